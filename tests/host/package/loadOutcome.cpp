#include "package/loadOutcome.h"

#include "oxdiagk/instanceRegistry.h"
#include "oxdiagk/tAssertConfiguration.h"
#include "oxdiagk/tStatus2Heap.h"
#include "oxdiagk/tTrace.h"
#include "oxdiagk/tTraceFilter.h"
#include "qelmk/module.h"
#include "vexk/module.h"

namespace {

using nOXDIAG100::tAssertConfiguration;
using nOXDIAG100::tStatus2Heap;
using nOXDIAG100::tTrace;

tStatus2Heap* heap() {
  i32 status = 0;
  return tStatus2Heap::getHeap(status);
}

constexpr char const* kCategories[] = {"default", "warning", "statusWarning", "statusFatal"};

// A category that is not there is not checked, and neither is one before and after the load.
bool isCategoryMissing() {
  tAssertConfiguration const& contracts = tAssertConfiguration::getInstance();
  for (char const* category : kCategories) {
    if (!contracts.checksAreEnabled(category)) return true;
  }
  return false;
}

}  // namespace

void startPlatform() {
  vexkInitialize();
  qelmkInitialize();
}

tLoadOutcome judgeLoadedLibrary() {
  tTrace& trace = tTrace::getInstance();
  if (nOXDIAG100::acquireInstance(nullptr) == nOXDIAG100::kNoHandle) return kWithoutRegistry;
  if (isCategoryMissing()) return kWithoutCategory;
  if (heap() == nullptr) return kWrong;
  if (heap()->getFreeUnits() == 0) return kWithEmptyHeap;
  if (trace.getFilter() == nullptr) return kWithoutFilter;
  return trace.getFilter()->isEmpty() ? kWithEmptyFilter : kWhole;
}

bool isLibraryGone() {
  return heap() == nullptr && isCategoryMissing();
}
