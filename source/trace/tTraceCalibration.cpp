#include "trace/tTraceCalibration.h"

#include "oxdiagk/tBlockTracer.h"
#include "vexk/sync.h"

namespace nOXDIAG100 {
namespace {

constexpr u32 kBlockVerbosity = 100;
constexpr u32 kLineVerbosity = 104;

// Arrays, because a block tracer takes its texts as char*. It does not write to them.
constinit char component[] = "oxdiagk";
constinit char file[] = "source/trace/tTrace";
constinit char firstBlock[] = "First block trace";
constinit char secondBlock[] = "Second block trace";

// Nobody sees these lines, so the version says nothing.
constexpr tSSVersion kVersion;

}  // namespace

void tTrace::calibrate() {
  tConfigurationGuard const guard(configurationLock);
  i32 status = 0;
  iSync* lock = syncOpen(nullptr, tSyncDescriptor{}, status);
  if (lock == nullptr) return;
  if (lock->acquire(kSyncWaitForever) >= 0) {
    u32 const wasEnabled = load(enabled);
    store(enabled, 0);
    tTraceCalibration calibration(*this);
    calibration.run();
    store(calibrationOffsets[0], calibration.getBlockEntryCost());
    store(calibrationOffsets[1], calibration.getBlockExitCost());
    store(calibrationOffsets[2], calibration.getLineCost());
    store(enabled, wasEnabled);
    lock->release();
  }
  syncClose(lock);
}

void tTraceCalibration::run() {
  for (u64 pass = 0; pass < kPassCount; ++pass) {
    u64 const before = readTimeStampCounter();
    baseline += readTimeStampCounter() - before;
    traceBlocks();
    traceLine();
  }
}

void tTraceCalibration::traceBlocks() {
  i32* const noStatus = nullptr;
  {
    u64 const before = readTimeStampCounter();
    tBlockTracer const block(component, kVersion, __LINE__, file, kBlockVerbosity, firstBlock,
                             nullptr, noStatus, trace);
    blockEntry += readTimeStampCounter() - before;
  }
  u64 before = 0;
  {
    tBlockTracer const block(component, kVersion, __LINE__, file, kBlockVerbosity, secondBlock,
                             nullptr, noStatus, trace);
    before = readTimeStampCounter();
  }
  blockExit += readTimeStampCounter() - before;
}

void tTraceCalibration::traceLine() {
  u64 const before = readTimeStampCounter();
  trace.putPrefix(component, kVersion, __LINE__, file, kLineVerbosity, tTrace::kTraceLine)
      .put("First trace")
      .endl();
  line += readTimeStampCounter() - before;
}

}  // namespace nOXDIAG100
