#pragma once

// The tests of the driver and their run. One line of debugger print for each turn:
//
//   [oxt] run Suite.Name
//   [oxt] FAILED Suite.Name file:line expected a == b, seen 1 and 2     for each failed check
//   [oxt] ok Suite.Name                                                 when none failed
//   [oxt] done 123 passed 0 failed                                      after the last test
//
// A run without the last line has crashed or hung in the test that its last "run" line names.

#include "ntos/types.h"

// The linker sorts the parts of the section by what follows the dollar sign.
#pragma section("oxt$a", read)
#pragma section("oxt$m", read)
#pragma section("oxt$z", read)

namespace oxt {

struct tTest {
  char const* suite;
  char const* name;
  void (*body)();
};

// Where a check stands, and its expression as written.
struct tPlace {
  char const* file;
  int line;
  char const* expression;
};

// Runs every test, in the order in which they were linked. PASSIVE_LEVEL.
void runAllTests();

// Notes that a check of the running test failed. `seen` says what was seen instead.
void reportFailure(tPlace const& place, char const* seen);

}  // namespace oxt
