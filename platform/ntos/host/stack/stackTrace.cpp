#include "ntos/stack.h"

#include "stack/stackBounds.h"

namespace {

// What a function with a frame pointer puts where that points.
struct Frame {
  u64 caller;  // address of the caller's frame
  u64 returnAddress;
};

u64 addressOf(void const* pointer) {
  return reinterpret_cast<u64>(pointer);
}

bool isFrame(u64 frame, ntoshost::StackBounds const& stack) {
  return frame % sizeof(u64) == 0 && frame >= stack.low && frame < stack.high &&
         stack.high - frame >= sizeof(Frame);
}

// Code without frame pointers leaves any number in the register: what it points to may be another
// function's data, which the sanitizers would report.
__attribute__((no_sanitize("address", "thread", "undefined"), noinline)) Frame readFrame(
    u64 frame) {
  return *reinterpret_cast<Frame const*>(frame);
}

}  // namespace

__attribute__((noinline)) u16 RtlCaptureStackBackTrace(u32 skip, u32 count, void** addresses,
                                                       u32* hash) {
  u64 frame = addressOf(__builtin_frame_address(0));
  ntoshost::StackBounds const stack = ntoshost::findStackBounds(frame);
  u16 found = 0;
  u32 sum = 0;
  while (found < count && found < 0xFFFF && isFrame(frame, stack)) {
    Frame const content = readFrame(frame);
    if (content.returnAddress == 0) break;
    if (skip > 0) {
      --skip;
    } else {
      sum += static_cast<u32>(content.returnAddress);
      addresses[found++] = reinterpret_cast<void*>(content.returnAddress);
    }
    if (content.caller <= frame) break;
    frame = content.caller;
  }
  if (hash != nullptr) *hash = sum;
  return found;
}
