// The status heap's allocations as fallible calls: conformance_tests is linked so that the library
// comes here for them.

#include "ntoshost/faults.h"
#include "oxdiagk/tStatus2Heap.h"

using nOXDIAG100::kStatusHeapFull;
using nOXDIAG100::tStatus2Heap;

extern "C" {
void* __real__ZN10nOXDIAG10012tStatus2Heap19allocateMemoryBlockEiRi(tStatus2Heap* heap, i32 size,
                                                                    i32& status);
void* __wrap__ZN10nOXDIAG10012tStatus2Heap19allocateMemoryBlockEiRi(tStatus2Heap* heap, i32 size,
                                                                    i32& status);
}

void* __wrap__ZN10nOXDIAG10012tStatus2Heap19allocateMemoryBlockEiRi(tStatus2Heap* heap, i32 size,
                                                                    i32& status) {
  if (status >= 0 && ntoshost::injectFault(ntoshost::kFaultFixedMemory)) {
    status = kStatusHeapFull;
    return nullptr;
  }
  return __real__ZN10nOXDIAG10012tStatus2Heap19allocateMemoryBlockEiRi(heap, size, status);
}
