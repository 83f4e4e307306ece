#pragma once

#include "oxdiagk/tTrace.h"

namespace nOXDIAG100 {

// Measures what a block entry, a block exit and a plain line of a stream cost, in counter ticks,
// each less what reading the counter costs. The stream should be disabled meanwhile.
class tTraceCalibration {
 public:
  explicit tTraceCalibration(tTrace& trace) : trace(trace) {}

  // Traces two blocks and a line in each of kPassCount passes. To be called once.
  void run();

  u64 getBlockEntryCost() const { return getCost(blockEntry); }
  u64 getBlockExitCost() const { return getCost(blockExit); }
  u64 getLineCost() const { return getCost(line); }

 private:
  static constexpr u64 kPassCount = 25;

  void traceBlocks();
  void traceLine();

  // Unsigned like the time delta that it is subtracted from: a wrapped cost is a negative one.
  u64 getCost(u64 sum) const { return sum / kPassCount - baseline / kPassCount; }

  tTrace& trace;
  u64 baseline = 0;
  u64 blockEntry = 0;
  u64 blockExit = 0;
  u64 line = 0;
};

}  // namespace nOXDIAG100
