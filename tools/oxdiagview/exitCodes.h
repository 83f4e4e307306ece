#pragma once

namespace oxdiagview {

// Exit codes of the program.
enum tExitCode : int {
  kExitGood = 0,      // everything was shown
  kExitNoRing = 1,    // there is no recorder's ring in the dump
  kExitNoFile = 2,    // the file is missing or cannot be read
  kExitNoOutput = 4,  // the output could not be written
  kExitUsage = 64,    // the command line is wrong
};

}  // namespace oxdiagview
