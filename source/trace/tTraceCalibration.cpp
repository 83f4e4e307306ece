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
  tStreamGuard const guard(*this);
  if (!guard.isHeld()) return;
  i32 status = 0;
  iSync* lock = syncOpen(nullptr, tSyncDescriptor{}, status);
  if (lock == nullptr) return;
  if (lock->acquire(kSyncWaitForever) >= 0) {
    tTraceCalibration calibration;
    calibration.run();
    store(calibrationOffsets[0], calibration.getBlockEntryCost());
    store(calibrationOffsets[1], calibration.getBlockExitCost());
    store(calibrationOffsets[2], calibration.getLineCost());
    if (timeDeltaIsEnabled() == 0) setLastLineTime(readTimeStampCounter());
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
}

void tTraceCalibration::measure() {
  u64 const before = readTimeStampCounter();
  baseline.addTry(readTimeStampCounter() - before);
  blockEntry.addTry(traceBehindEnd("First block trace; {", kBlockVerbosity, kBlockEntry));
  blockExit.addTry(traceBehindEnd("} First block trace", kBlockVerbosity, kBlockExit));
  line.addTry(traceBehindEnd("First trace", kLineVerbosity, kTraceLine));
}

u64 tTraceCalibration::traceBehindEnd(char const* text, u32 verbosity, tTraceType type) {
  endl().putPrefix(component, kVersion, __LINE__, file, verbosity, type);
  u64 const gap = load(lineStartTime) - getLastLineTime();
  put(text).endl();
  return gap;
}

void tTraceCalibration::endSamples() {
  tTickAverage* const averages[] = {&baseline, &blockEntry, &blockExit, &line};
  for (tTickAverage* const average : averages) average->endSample();
}

// The way contains a reading. Should chance make it the shorter one, the rest of it costs nothing.
u64 tTraceCalibration::getCost(tTickAverage const& way) const {
  u64 const reading = baseline.get();
  return way.get() > reading ? way.get() - reading : 0;
}

}  // namespace nOXDIAG100
