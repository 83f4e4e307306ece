#pragma once

// Exit codes of the program.
enum tExitCode : int {
  kExitGood = 0,      // done
  kExitNotTaken = 1,  // the target did not do what was asked of it
  kExitNobody = 2,    // nobody listens
  kExitDenied = 3,    // access is denied
  kExitWord = 4,      // a word is unknown, or would have no effect
  kExitNoOutput = 5,  // the output could not be written
  kExitUsage = 64,    // the command line is wrong
};
