#pragma once

// The memory that a stream makes its reader take, beside what was read of it.

#include <string>

#include "ntoshost/pool.h"
#include "support/tBlindReader.h"

// Below this many bytes a byte that was read, and as many at once.
constexpr u64 kMostStreamGrowth = 8;
constexpr u64 kMostStreamMemory = 64 << 10;

// What the pool gave at most since the object was made.
class tWatchedPool {
 public:
  tWatchedPool() : before(ntoshost::outstandingFootprint()) { ntoshost::watchFootprint(); }

  // Since the object was made, or since the last call. Begins to watch again.
  u64 takePeak() {
    u64 const taken = ntoshost::peakFootprint() - before;
    ntoshost::watchFootprint();
    return taken;
  }

 private:
  u64 before;
};

inline bool isBounded(u64 taken, u64 bytesRead) {
  return taken < kMostStreamGrowth * bytesRead + kMostStreamMemory;
}

// A reader that cannot tell how much is left, and compares in front of every item and behind it.
class tWatchingReader final : public tBlindReader {
 public:
  tWatchingReader(void const* stream, size_t size, i32& status)
      : tBlindReader(stream, size, status) {}

  // The first moment of too much memory; empty when there was none.
  std::string const& getFinding() const { return finding; }

 protected:
  void atItem() override {
    u64 const taken = pool.takePeak();
    if (isBounded(taken, getPosition()) || !finding.empty()) return;
    finding = std::to_string(taken) + " bytes when " + std::to_string(getPosition()) + " were read";
  }

 private:
  tWatchedPool pool;
  std::string finding;
};
