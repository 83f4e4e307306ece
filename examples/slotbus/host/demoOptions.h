#pragma once

#include <optional>
#include <string>

// What the user typed.
struct tDemoOptions {
  std::string file;
  std::optional<std::string> filter;
};

// Exit codes of the demo.
enum tExitCode : int {
  kExitGood = 0,      // every line of the rack is good
  kExitBadRack = 1,   // something in the rack is wrong; the trace tells what
  kExitNoFile = 2,    // the file is missing or cannot be read
  kExitNoModule = 3,  // the library could not be started
  kExitNoOutput = 4,  // the trace could not be written to standard output
  kExitUsage = 64,    // the command line is wrong
};

// Reads the command line. Returns nothing when the program has to end at once, for --help or a
// usage error, which have been printed then; `exitCode` is set in that case.
std::optional<tDemoOptions> readOptions(int argc, char** argv, int& exitCode);
