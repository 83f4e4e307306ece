#pragma once

#include "ntos/types.h"

// What the executive knows of the calling thread that is looked at, and changed, for every line of
// a trace: so it lies where the calls that do so can be inline. Of use to nobody but these and the
// executive itself.

namespace ntoshost {

struct ThreadWords {
  // Of `regions`: that the calls are watched, as the strict executive does; also one call that
  // leaves too many. Below that are the critical regions that the thread is in, and the kernel
  // mutexes that it owns.
  static constexpr u32 kWatched = 0xC0000000;

  u64 id;  // 0: not asked for yet
  u32 regions;
  KIRQL level;

  bool isWatched() const { return static_cast<i32>(regions) < 0; }
  u32 countRegions() const { return regions & ~kWatched; }
};

extern constinit thread_local ThreadWords g_words __attribute__((tls_model("initial-exec")));

// What the system calls the thread; from then on known.
u64 findThreadId();

// What the watched calls do beside counting.
void enterWatchedRegion();
void leaveWatchedRegion();

}  // namespace ntoshost
