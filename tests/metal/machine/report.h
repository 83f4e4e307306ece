#pragma once

// What a case tells the runner: lines of text through the emulator's debug port, and the exit code.

#include "ntos/types.h"

// Reports one line.
void say(char const* line);

// Reports "NAME NUMBER", for the runner to judge.
void sayNumber(char const* name, u64 number);

// Reports "FAILED STATEMENT" unless `held`; the case then ends as failed.
void expect(bool held, char const* statement);

// How a run ends: the value written to the emulator's exit port.
enum tEnd : u8 {
  kEndHeld = 0x2A,
  kEndFailed = 0x2B,
  kEndUnknownCase = 0x2C,
  kEndFault = 0x2D,
};

// Ends the emulator.
[[noreturn]] void endRun(tEnd end);

// Whether every expect() held so far.
bool allHeld();
