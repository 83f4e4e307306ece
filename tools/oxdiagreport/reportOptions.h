#pragma once

#include <optional>
#include <string>
#include <vector>

enum class tFormat { kText, kJson };

// What the user typed.
struct tReportOptions {
  std::string file = "-";  // "-" is standard input
  tFormat format = tFormat::kText;
  std::string language = "english";
  std::vector<std::string> words;      // files with the words of components
  std::optional<std::string> symbols;  // a folder with symbols of modules
};

// Reads the words of the command line. Returns nothing when the program has to end at once, for
// --help or a usage error, which have been printed then; `exitCode` is set in that case.
std::optional<tReportOptions> readOptions(std::vector<std::string> const& words, int& exitCode);
