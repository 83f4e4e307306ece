#include "trace/tTraceCalibration.h"

#include "oxdiagk/tVEXTraceDestination.h"
#include "trace/tStreamLock.h"
#include "vexk/sync.h"

namespace nOXDIAG100 {
namespace {

constexpr u32 kBlockVerbosity = 100;
constexpr u32 kLineVerbosity = 104;

constexpr char component[] = "oxdiagk";
constexpr char file[] = "source/trace/tTrace";

// Nobody sees these lines, so the version says nothing.
constexpr tSSVersion kVersion;

}  // namespace

void tTrace::calibrate() {
  tTraceCalibration::calibrate(parts);
}

void tTraceCalibration::calibrate(tTraceParts& stream) {
  tStreamGuard const guard(stream);
  if (!guard.isHeld() || stream.isEnding) return;
  i32 status = 0;
  iSync* lock = syncOpen(nullptr, tSyncDescriptor{}, status);
  if (lock == nullptr) return;
  if (lock->acquire(kSyncWaitForever) >= 0) {
    tTraceCalibration calibration;
    calibration.run();
    calibration.store(stream.clock);
    if (!stream.getShape().isOn(tLineShape::kTimeDelta)) stream.clock.end();
    lock->release();
  }
  syncClose(lock);
}

tTraceCalibration::tTraceCalibration() : tTrace(tVEXTraceDestination::getInstance()) {
  disable();
}

void tTraceCalibration::run() {
  for (u64 sample = 0; sample < tTickAverage::kSampleCount; ++sample) {
    for (u32 count = 0; count < kTryCount; ++count) measure();
    endSamples();
  }
  endl();
}

void tTraceCalibration::measure() {
  u64 const before = vexReadTimeStampCounter();
  baseline.addTry(vexReadTimeStampCounter() - before);
  blockEntry.addTry(openBehindEnd(kBlockVerbosity, kBlockEntry));
  blockExit.addTry(openBehindEnd(kBlockVerbosity, kBlockExit));
  line.addTry(openBehindEnd(kLineVerbosity, kTraceLine));
}

// The end of the line before, and at once the next one. Its text is behind the second reading.
u64 tTraceCalibration::openBehindEnd(u32 verbosity, tTraceType type) {
  endl().putPrefix(component, kVersion, __LINE__, file, verbosity, type);
  return getClock().getStart() - getClock().getEnd();
}

void tTraceCalibration::endSamples() {
  tTickAverage* const averages[] = {&baseline, &blockEntry, &blockExit, &line};
  for (tTickAverage* const average : averages) average->endSample();
}

void tTraceCalibration::store(tLineClock& clock) const {
  clock.setOffset(tLineClock::kBlockEntryOffset, getCost(blockEntry));
  clock.setOffset(tLineClock::kBlockExitOffset, getCost(blockExit));
  clock.setOffset(tLineClock::kLineOffset, getCost(line));
}

// A busy neighbour or a slow clock may lengthen every try of a calibration, and lines that follow
// later do not have it. A delta of lines at once is the cost and one reading. Of these two the
// lesser is at most half of both, so the delta is not below zero as long as the lines are not more
// than twice as fast as the calibration was.
u64 tTraceCalibration::getCost(tTickAverage const& way) const {
  u64 const reading = baseline.get();
  u64 const cost = way.get() > reading ? way.get() - reading : 0;
  return cost < reading ? cost : reading;
}

}  // namespace nOXDIAG100
