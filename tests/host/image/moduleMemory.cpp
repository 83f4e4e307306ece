// Where the memory of the library comes from: from the platform, and never from the language's own
// operators, which are counted here.

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

#include "ntos/status.h"
#include "ntoshost/executive.h"
#include "tImage.h"
#include "tPlatform.h"

namespace {

std::atomic<u64> callsOfNew = 0;
std::atomic<u64> callsOfDelete = 0;

void* allocate(std::size_t size) {
  ++callsOfNew;
  void* const block = std::malloc(size == 0 ? 1 : size);
  if (block == nullptr) std::abort();
  return block;
}

void give(void* block) {
  ++callsOfDelete;
  std::free(block);
}

// How often the operators are called in an operation.
template <class Operation>
u64 callsIn(Operation operation) {
  u64 const before = callsOfNew + callsOfDelete;
  operation();
  return callsOfNew + callsOfDelete - before;
}

}  // namespace

void* operator new(std::size_t size) {
  return allocate(size);
}
void* operator new[](std::size_t size) {
  return allocate(size);
}
void operator delete(void* block) noexcept {
  give(block);
}
void operator delete[](void* block) noexcept {
  give(block);
}
void operator delete(void* block, std::size_t) noexcept {
  give(block);
}
void operator delete[](void* block, std::size_t) noexcept {
  give(block);
}

TEST(ModuleMemory, IsThePlatformsFromLoadToUnload) {
  tPlatform const platform;
  tImage const image;
  NTSTATUS status = 0;
  EXPECT_EQ(callsIn([&] { status = image.initialise(); }), 0u);
  ASSERT_EQ(status, STATUS_SUCCESS);
  EXPECT_GT(ntoshost::outstandingBlocks(), 25u);
  EXPECT_EQ(callsIn([&] { image.unload(); }), 0u);
  EXPECT_EQ(ntoshost::outstandingBlocks(), 0u);
}

TEST(ModuleMemory, TheCountersCount) {
  EXPECT_EQ(callsIn([] { ::operator delete(::operator new(1)); }), 2u);
}

TEST(ModuleMemory, IsLongLived) {
  tPlatform const platform;
  tImage const image;
  ASSERT_EQ(image.initialise(), STATUS_SUCCESS);
  ntoshost::visitOutstanding(
      [](void*, ntoshost::PoolBlock const& block) {
        EXPECT_EQ(block.tag, ntosPoolTag("vexm"));
        EXPECT_EQ(block.type, NonPagedPoolNx);
      },
      nullptr);
  image.unload();
}
