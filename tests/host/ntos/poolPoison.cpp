// What the address sanitizer knows about the pool, in programs that have it.

#include <gtest/gtest.h>

#include "ntos/pool.h"
#include "scribble.h"

extern "C" __attribute__((weak)) int __asan_address_is_poisoned(void const volatile* address);

namespace {

bool isSanitized() {
  return __asan_address_is_poisoned != nullptr;
}

bool isPoisoned(u8 const* address) {
  return isSanitized() && __asan_address_is_poisoned(address) != 0;
}

TEST(PoolPoison, TheBytesAskedForAreOpenAndTheGuardsAreNot) {
  for (size_t size : {1u, 7u, 8u, 9u, 16u, 21u, 4096u}) {
    u8* const block = static_cast<u8*>(ExAllocatePoolWithTag(NonPagedPoolNx, size, kTag));
    EXPECT_EQ(isPoisoned(block - 16), isSanitized()) << size;
    EXPECT_EQ(isPoisoned(block - 1), isSanitized()) << size;
    EXPECT_FALSE(isPoisoned(block)) << size;
    EXPECT_FALSE(isPoisoned(block + size - 1)) << size;
    EXPECT_EQ(isPoisoned(block + size), isSanitized()) << size;
    ExFreePoolWithTag(block, kTag);
  }
}

TEST(PoolPoison, FreedBytesAreClosed) {
  u8* const block = static_cast<u8*>(ExAllocatePoolWithTag(NonPagedPoolNx, 21, kTag));
  ExFreePoolWithTag(block, kTag);
  EXPECT_EQ(isPoisoned(block), isSanitized());
  EXPECT_EQ(isPoisoned(block + 20), isSanitized());
}

}  // namespace
