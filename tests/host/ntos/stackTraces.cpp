// The walk over the calling thread's frames.

#include <gtest/gtest.h>
#include <malloc.h>
#include <pthread.h>

#include <thread>

#include "ntos/stack.h"

extern "C" __attribute__((weak)) int __sanitizer_install_malloc_and_free_hooks(
    void (*allocated)(void const volatile*, size_t), void (*freed)(void const volatile*));

namespace {

constexpr u32 kDepth = 8;

struct Trace {
  void* addresses[kDepth] = {};
  u16 found = 0;
  u32 hash = 0;
  void* outer = nullptr;   // where outerFunction goes back to
  void* middle = nullptr;  // where middleFunction goes back to
};

#define NOT_INLINED __attribute__((noinline))

NOT_INLINED void innerFunction(Trace& trace, u32 skip, u32 count) {
  trace.found = RtlCaptureStackBackTrace(skip, count, trace.addresses, &trace.hash);
}

NOT_INLINED void middleFunction(Trace& trace, u32 skip, u32 count) {
  trace.middle = __builtin_return_address(0);
  innerFunction(trace, skip, count);
  asm volatile("" ::: "memory");
}

NOT_INLINED void outerFunction(Trace& trace, u32 skip, u32 count) {
  trace.outer = __builtin_return_address(0);
  middleFunction(trace, skip, count);
  asm volatile("" ::: "memory");
}

bool isInside(void* address, void (*function)(Trace&, u32, u32)) {
  u64 const start = reinterpret_cast<u64>(function);
  return reinterpret_cast<u64>(address) - start < 1024;
}

TEST(StackTrace, TheFirstAddressIsInTheCaller) {
  Trace trace;
  outerFunction(trace, 0, kDepth);
  ASSERT_GE(trace.found, 4);
  EXPECT_TRUE(isInside(trace.addresses[0], innerFunction));
  EXPECT_TRUE(isInside(trace.addresses[1], middleFunction));
  EXPECT_EQ(trace.addresses[2], trace.middle);
  EXPECT_EQ(trace.addresses[3], trace.outer);
}

TEST(StackTrace, SkippedFramesAreTheInnermost) {
  Trace trace;
  outerFunction(trace, 2, kDepth);
  ASSERT_GE(trace.found, 2);
  EXPECT_EQ(trace.addresses[0], trace.middle);
  EXPECT_EQ(trace.addresses[1], trace.outer);
}

TEST(StackTrace, NoMoreThanAskedForIsWritten) {
  Trace trace;
  outerFunction(trace, 0, 2);
  EXPECT_EQ(trace.found, 2);
  EXPECT_NE(trace.addresses[1], nullptr);
  EXPECT_EQ(trace.addresses[2], nullptr);
}

TEST(StackTrace, NothingAskedForIsNothingFound) {
  EXPECT_EQ(RtlCaptureStackBackTrace(0, 0, nullptr, nullptr), 0);
}

TEST(StackTrace, SkippingEveryFrameFindsNothing) {
  Trace trace;
  outerFunction(trace, 1'000'000, kDepth);
  EXPECT_EQ(trace.found, 0);
  EXPECT_EQ(trace.hash, 0u);
}

TEST(StackTrace, TheHashIsTheSumOfTheAddresses) {
  Trace trace;
  outerFunction(trace, 0, 3);
  u64 sum = 0;
  for (u32 i = 0; i < 3; ++i) sum += reinterpret_cast<u64>(trace.addresses[i]);
  EXPECT_EQ(trace.hash, static_cast<u32>(sum));
}

TEST(StackTrace, TheHashIsOptional) {
  void* address = nullptr;
  EXPECT_EQ(RtlCaptureStackBackTrace(0, 1, &address, nullptr), 1);
}

TEST(StackTrace, EveryThreadSeesItsOwnStack) {
  Trace trace;
  std::thread([&] { outerFunction(trace, 0, kDepth); }).join();
  ASSERT_GE(trace.found, 4);
  EXPECT_EQ(trace.addresses[2], trace.middle);
  EXPECT_EQ(trace.addresses[3], trace.outer);
}

// Puts a number where the frame of the function that called it should be, and walks.
__attribute__((noinline, no_sanitize("address", "undefined", "thread"))) u16 walkWithFrame(
    u64 callerFrame, void** addresses) {
  u64 volatile* const frame = static_cast<u64*>(__builtin_frame_address(0));
  u64 const saved = frame[0];
  frame[0] = callerFrame;
  u16 const found = RtlCaptureStackBackTrace(0, kDepth, addresses, nullptr);
  frame[0] = saved;
  return found;
}

TEST(StackTrace, AChainThatLeavesTheStackEndsThere) {
  u64 const here = reinterpret_cast<u64>(__builtin_frame_address(0));
  u64 const strays[] = {0,
                        1,
                        8,
                        here + 1,
                        here - 0x100000,
                        ~u64{0},
                        ~u64{0} - 7,
                        here << 1,
                        0x1000,
                        0xFFFF'8000'0000'0000,
                        here + (u64{1} << 40)};
  for (u64 stray : strays) {
    void* addresses[kDepth] = {};
    EXPECT_EQ(walkWithFrame(stray, addresses), 2) << std::hex << stray;
    EXPECT_NE(addresses[1], nullptr);
  }
}

TEST(StackTrace, AChainThatTurnsBackEnds) {
  void* addresses[kDepth] = {};
  u64 inner = 0;
  u64 const belowEveryFrame = (reinterpret_cast<u64>(&inner) & ~u64{0xFFF}) - 0x1000;
  EXPECT_EQ(walkWithFrame(belowEveryFrame, addresses), 2);
}

// Allocations of the calling thread: by the sanitizer's hooks, or by what the C library counts.
thread_local u64 t_allocations = 0;

void countAllocation(void const volatile*, size_t) {
  ++t_allocations;
}
void ignoreFree(void const volatile*) {
}

u64 allocationsSoFar() {
  return __sanitizer_install_malloc_and_free_hooks != nullptr ? t_allocations
                                                              : mallinfo2().uordblks;
}

TEST(StackTrace, TheFirstWalkOfAThreadAllocatesNothing) {
  if (__sanitizer_install_malloc_and_free_hooks != nullptr) {
    __sanitizer_install_malloc_and_free_hooks(countAllocation, ignoreFree);
  }
  Trace trace;
  u64 before = 1;
  u64 after = 0;
  u64 afterOneMore = 0;
  std::thread([&] {
    before = allocationsSoFar();
    outerFunction(trace, 0, kDepth);
    after = allocationsSoFar();
    void* volatile block = malloc(100'000);
    afterOneMore = allocationsSoFar();
    free(block);
  }).join();
  EXPECT_EQ(after, before);
  EXPECT_GT(afterOneMore, after);
  EXPECT_GE(trace.found, 4);
}

TEST(StackTrace, AWalkLeavesTheErrorNumberAlone) {
  Trace trace;
  int seen = 0;
  std::thread([&] {
    errno = 4321;
    outerFunction(trace, 0, kDepth);
    seen = errno;
  }).join();
  EXPECT_EQ(seen, 4321);
}

}  // namespace
