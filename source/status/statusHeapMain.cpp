#include "status/statusHeapMain.h"

#include "oxdiagk/tStatus2Heap.h"

namespace nOXDIAG100 {
namespace {

constexpr u32 kPhaseStart = 0;
constexpr u32 kPhaseStop = 1;

}  // namespace

i32 statusHeapMain(u32 phase) {
  switch (phase) {
    case kPhaseStart:
      return tStatus2Heap::create();
    case kPhaseStop:
      return tStatus2Heap::destroy();
    default:
      return 0;
  }
}

}  // namespace nOXDIAG100
