#pragma once

#include <optional>
#include <string>
#include <vector>

// What is to be done, beside --help.
enum class tCommand { kList, kTrace, kAssert, kVersion, kWords };

// What the user typed.
struct tControlOptions {
  tCommand command = tCommand::kList;
  std::optional<std::string> place;
  bool pushes = false;
  bool pops = false;
  bool isRaw = false;
  std::vector<std::string> words;  // for the library
};

// Reads the command line. Returns nothing when the program has to end at once, for --help or a
// usage error, which have been printed then; `exitCode` is set in that case.
std::optional<tControlOptions> readOptions(int argc, char** argv, int& exitCode);
