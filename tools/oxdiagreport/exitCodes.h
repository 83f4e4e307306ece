#pragma once

// Exit codes of the program.
enum tExitCode : int {
  kExitGood = 0,      // every status was read and printed
  kExitBadFile = 1,   // the input is damaged, or no file of statuses or words
  kExitNoFile = 2,    // a file or folder is missing or cannot be read
  kExitNoModule = 3,  // the library could not be started
  kExitNoOutput = 4,  // the output could not be written
  kExitUsage = 64,    // the command line is wrong
};
