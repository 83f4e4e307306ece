// The stream configured by text, and a handle of the front door.

#include "measure.h"
#include "ntoshost/executive.h"
#include "optionTexts.h"
#include "oxdiagk/instanceRegistry.h"
#include "tBenchStream.h"

namespace {

// The calibration runs as often as it takes time, and the whole is long.
constexpr u32 kFewOperations = 40;

void dropPrint(void*, char const*, size_t) {
}

void measureText(char const* path, char const* options) {
  tNullDestination destination;
  tBenchStream trace(destination);
  ntoshost::setDebugPrintSink(&dropPrint, nullptr);
  measurePath(
      path, [&] { trace.configure(options); }, kFewOperations);
  ntoshost::setDebugPrintSink(nullptr, nullptr);
  demand(trace.getMinPrefixWidth() == 50 && trace.isEnabled() == 1, path);
}

void measureHandle() {
  constexpr u32 kOtherHandles = 32;
  u32 others[kOtherHandles];
  for (u32& handle : others) handle = nOXDIAG100::acquireInstance(nullptr);
  char name[] = "trace";
  u32 handle = 0;
  measurePath("handle taken and given", [&] {
    handle = nOXDIAG100::acquireInstance(name);
    nOXDIAG100::releaseInstance(handle);
  });
  for (u32 const other : others) nOXDIAG100::releaseInstance(other);
  demand(handle != nOXDIAG100::kNoHandle, "handle taken and given");
}

}  // namespace

void measureConfiguring() {
  measureText("16 settings", kSettings);
  measureText("all 19 option words", kEveryOption);
  measureHandle();
}
