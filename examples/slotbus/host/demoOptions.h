#pragma once

#include <optional>
#include <string>

enum class tColorChoice { kAuto, kAlways, kNever };

// What the user typed.
struct tDemoOptions {
  std::string file;
  std::optional<std::string> filter;
  std::string trace;                  // option words of the trace stream
  std::string assertions;             // option words of the assertions
  bool captures = false;              // trace into a buffer, printed at the end
  std::optional<std::string> driveC;  // the folder that is drive C:, by default the current one
  std::optional<std::string> serial;  // a file for serial port 1 instead of a terminal
  std::optional<std::string> save;    // a file for the statuses of what is wrong
  bool savesModules = false;          // with the modules on their call stacks
  bool serves = false;                // stay until Ctrl-C, and let oxdiagctl change the settings
  std::optional<std::string> socket;  // where it is to look, instead of the place by default
  bool crashes = false;               // stop the machine when the rack is read
  std::optional<std::string> dump;    // the file of its crash dump, instead of a temporary one
  tColorChoice color = tColorChoice::kAuto;  // of the trace on standard output
  bool checksOnly = false;                   // only report what is wrong with the options
  bool isFirstTry = false;                   // nothing was typed behind the program's name
};

// Exit codes of the demo.
enum tExitCode : int {
  kExitGood = 0,      // every line of the rack is good
  kExitBadRack = 1,   // something in the rack is wrong; the trace tells what
  kExitNoFile = 2,    // the file is missing or cannot be read
  kExitNoModule = 3,  // the library could not be started
  kExitNoOutput = 4,  // the trace, the statuses or the help could not be written
  kExitUsage = 64,    // the command line is wrong
};

// Reads the command line. Returns nothing when the program has to end at once, for --help or a
// usage error, which have been printed then; `exitCode` is set in that case.
std::optional<tDemoOptions> readOptions(int argc, char** argv, int& exitCode);
