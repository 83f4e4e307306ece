#include "vexk/callStack.h"

#include "ntos/stack.h"

namespace {

// The frame of _vexGetCallStack, which nobody wants to see.
constexpr u32 kOwnFrames = 1;

// What skipped and captured frames may come to in one kernel call.
constexpr u32 kKernelLimit = 62;
static_assert(kCallStackMaximum == kKernelLimit - kOwnFrames);

u32 least(u32 left, u32 right) {
  return left < right ? left : right;
}

}  // namespace

__attribute__((noinline)) u32 _vexGetCallStack(u32 count, u32 skip, u64* addresses) {
  if (addresses == nullptr) return 0;
  u32 found = 0;
  if (count != 0 && skip < kCallStackMaximum) {
    u32 const wanted = least(count, kCallStackMaximum - skip);
    found = RtlCaptureStackBackTrace(skip + kOwnFrames, wanted, reinterpret_cast<void**>(addresses),
                                     nullptr);
  }
  for (u32 i = found; i < count; ++i) addresses[i] = 0;
  return found;
}
