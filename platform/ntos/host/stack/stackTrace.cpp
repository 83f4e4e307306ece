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

constexpr u32 kMostFrames = 0xFFFF;  // what the result can say

// The highest address that a frame of this stack can have; 0 when the stack is not known.
u64 lastFrameOf(ntoshost::StackBounds const& stack) {
  return stack.high < sizeof(Frame) ? 0 : stack.high - sizeof(Frame);
}

bool isFrame(u64 frame, u64 lastFrame) {
  return frame % sizeof(u64) == 0 && frame <= lastFrame;
}

// Code without frame pointers leaves any number in the register: what it points to may be another
// function's data, which the sanitizers would report.
__attribute__((no_sanitize("address", "thread", "undefined"))) Frame readFrame(u64 frame) {
  return *reinterpret_cast<Frame const*>(frame);
}

u32 sumOf(void* const* addresses, u32 count) {
  u64 sum = 0;
  for (u32 i = 0; i < count; ++i) sum += addressOf(addresses[i]);
  return static_cast<u32>(sum);
}

}  // namespace

__attribute__((noinline)) u16 RtlCaptureStackBackTrace(u32 skip, u32 count, void** addresses,
                                                       u32* hash) {
  u64 frame = addressOf(__builtin_frame_address(0));
  u64 const lastFrame = lastFrameOf(ntoshost::findStackBounds(frame));
  u32 const wanted = count < kMostFrames ? count : kMostFrames;
  u32 found = 0;
  while (found < wanted && isFrame(frame, lastFrame)) {
    Frame const content = readFrame(frame);
    if (content.returnAddress == 0) break;
    if (skip > 0) {
      --skip;
    } else {
      addresses[found++] = reinterpret_cast<void*>(content.returnAddress);
    }
    if (content.caller <= frame) break;
    frame = content.caller;
  }
  if (hash != nullptr) *hash = sumOf(addresses, found);
  return static_cast<u16>(found);
}
