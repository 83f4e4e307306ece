#pragma once

// Counts the instructions of one path of the library, for a run under callgrind. Without it a path
// is run all the same, and nothing is counted.

#include <valgrind/callgrind.h>

#include <cstdio>
#include <cstdlib>

#include "ntos/types.h"

// Nothing of the work around it is moved past it or dropped.
inline void keepMemory() {
  __asm__ volatile("" ::: "memory");
}
template <class T>
void keep(T const& value) {
  __asm__ volatile("" : : "g"(&value) : "memory");
}

// Ends the program when a path did not do its work: its count would be worth nothing.
inline void demand(bool isDone, char const* path) {
  if (isDone) return;
  std::fprintf(stderr, "oxdiag_paths: '%s' did not do its work\n", path);
  std::exit(1);
}

constexpr u32 kOperations = 400;

// Runs `operate` until what is made once is made, and then `count` times between two marks that
// name path and count for the reader of the profile, tools/dev/budget.py.
template <class tOperate>
[[gnu::noinline]] void measurePath(char const* path, tOperate operate, u32 count = kOperations) {
  constexpr u32 kWarmUp = 8;
  char mark[128];
  std::snprintf(mark, sizeof(mark), "%s x%u", path, count);
  for (u32 index = 0; index < kWarmUp; ++index) operate();
  CALLGRIND_ZERO_STATS;
  for (u32 index = 0; index < count; ++index) {
    operate();
    keepMemory();
  }
  CALLGRIND_DUMP_STATS_AT(mark);
}

// While it lives, instructions of a path are not counted.
class tUncounted {
 public:
  tUncounted() { CALLGRIND_TOGGLE_COLLECT; }
  ~tUncounted() { CALLGRIND_TOGGLE_COLLECT; }
  tUncounted(tUncounted const&) = delete;
  tUncounted& operator=(tUncounted const&) = delete;
};

// The paths, by what they belong to.
void measureLines();
void measureValues();
void measureStatuses();
void measureConfiguring();
void measureViews();
