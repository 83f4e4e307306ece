#pragma once

#include "oxdiagk/tTrace.h"
#include "trace/tTickAverage.h"

namespace nOXDIAG100 {

// Measures what is in a time delta, in counter ticks, when lines follow each other at once: the way
// from the counter's reading at the end of one line to that at the beginning of the next. What a
// line does between its two readings is in no delta, so it is not in these costs.
//
// The lines are those of a stream of its own, which shows nothing: others go on writing into the
// stream that is calibrated, and switching it. The way is the same, for it touches neither switches
// nor filter nor lock.
class tTraceCalibration : public tTrace {
 public:
  // As tTrace::calibrate.
  static void calibrate(tTraceParts& stream);

 private:
  static constexpr u32 kTryCount = 2;  // for each measurement

  tTraceCalibration();

  // Traces a block and a line in each try. To be called once.
  void run();

  // Each cost less what one reading of the counter costs, and no more than that again.
  void store(tLineClock& clock) const;

  void measure();
  u64 openBehindEnd(u32 verbosity, tTraceType type);
  void endSamples();
  u64 getCost(tTickAverage const& way) const;

  tTickAverage baseline;
  tTickAverage blockEntry;
  tTickAverage blockExit;
  tTickAverage line;
};

}  // namespace nOXDIAG100
