#pragma once

#include <string>

#include "ntos/types.h"

// What the program was asked to do.
class tCommand {
 public:
  enum tMode { kTests, kFailEachCall, kFailRandomly, kAtLevel, kWrong };

  tCommand(int argc, char** argv);

  tMode mode = kTests;
  u64 rounds = 0;      // 0: all
  u64 repeats = 1;     // calls from one place that fail
  u64 call = 0;        // 0: each
  u64 seconds = 0;     // 0: the round of the seed alone
  u64 seed = 0;        // 0: by the clock
  std::string test;    // empty: all
  std::string points;  // a file; empty: none
  std::string below;   // a file; empty: no test is left out
  std::string level;   // apc, dispatch

 private:
  bool take(std::string const& word, std::string const& value);
};
