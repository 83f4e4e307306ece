// The call-stack walk on the host: what it costs, and how far it goes.

#include "vexk/callStack.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>

#include "ntos/irql.h"

// Counts what the C library's allocator is asked for: through the sanitizers' own hook, or without
// them by standing in front of it.
namespace {
std::atomic<u64> allocations{0};
}

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define OXDIAG_TEST_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define OXDIAG_TEST_SANITIZED 1
#endif
#endif

#ifdef OXDIAG_TEST_SANITIZED
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*onAllocation)(void const volatile*,
                                                                              size_t),
                                                         void (*onFree)(void const volatile*));

namespace {
void noteAllocation(void const volatile*, size_t) {
  ++allocations;
}
void noteNothing(void const volatile*) {
}
bool const hooked = __sanitizer_install_malloc_and_free_hooks(&noteAllocation, &noteNothing) != 0;
}  // namespace
#else
extern "C" void* __libc_malloc(size_t size);
extern "C" void* malloc(size_t size) {
  ++allocations;
  return __libc_malloc(size);
}

namespace {
bool const hooked = true;
}
#endif

namespace {

template <class Operation>
u64 allocationsOf(Operation operation) {
  u64 const before = allocations;
  operation();
  return allocations - before;
}

// Calls itself `depth` times and then captures; the work after the call keeps every frame.
__attribute__((noinline)) u32 captureAtDepth(u32 depth, u32 count, u64* addresses, u32 skip = 0) {
  u32 const found = depth == 0 ? _vexGetCallStack(count, skip, addresses)
                               : captureAtDepth(depth - 1, count, addresses, skip);
  __asm__ volatile("");
  return found;
}

}  // namespace

TEST(VexkHostCallStack, TheCounterOfAllocationsCounts) {
  ASSERT_TRUE(hooked);
  void* volatile block = nullptr;
  EXPECT_EQ(1u, allocationsOf([&] { block = malloc(10); }));
  free(block);
}

TEST(VexkHostCallStack, AWalkAllocatesNothing) {
  u64 addresses[10];
  u32 found = 0;
  EXPECT_EQ(0u, allocationsOf([&] { found = captureAtDepth(20, 10, addresses); }));
  EXPECT_EQ(10u, found);
}

TEST(VexkHostCallStack, AWalkEndsAtItsLimit) {
  constexpr u32 kCount = 200;
  u64 addresses[kCount];
  EXPECT_EQ(kCallStackMaximum, captureAtDepth(150, kCount, addresses));
  EXPECT_NE(0u, addresses[kCallStackMaximum - 1]);
  for (u32 i = kCallStackMaximum; i < kCount; ++i) ASSERT_EQ(0u, addresses[i]) << i;
}

TEST(VexkHostCallStack, SkippedFramesCountTowardsTheLimit) {
  constexpr u32 kCount = 10;
  u64 addresses[kCount];
  EXPECT_EQ(3u, captureAtDepth(150, kCount, addresses, kCallStackMaximum - 3));
  EXPECT_EQ(1u, captureAtDepth(150, kCount, addresses, kCallStackMaximum - 1));
  EXPECT_EQ(0u, captureAtDepth(150, kCount, addresses, kCallStackMaximum));
}

TEST(VexkHostCallStack, ARecursionShowsOneReturnAddress) {
  u64 addresses[10];
  EXPECT_EQ(10u, captureAtDepth(20, 10, addresses));
  for (u32 i = 2; i < 10; ++i) EXPECT_EQ(addresses[1], addresses[i]) << i;
}

TEST(VexkHostCallStack, WorksAtHighIrql) {
  u64 addresses[10];
  KIRQL previous;
  KeRaiseIrql(HIGH_LEVEL, &previous);
  u32 const found = captureAtDepth(5, 10, addresses);
  KeLowerIrql(previous);
  EXPECT_LE(6u, found);
}
