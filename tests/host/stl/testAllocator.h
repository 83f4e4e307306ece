#pragma once

// The allocator beneath the containers under test: counts, remembers what is out, and fails the
// call that a test names. It is defined here and not in a library, so that these tests need no
// other module; a test program is one source.

#include <gtest/gtest.h>
#include <malloc.h>

#include <cstdlib>
#include <cstring>
#include <unordered_set>

#include "stl/memory.h"

class tTestAllocator {
 public:
  static tTestAllocator& get() {
    static tTestAllocator instance;
    return instance;
  }

  // Makes the nth call from now on fail, once; 0 calls all faults off.
  void failNth(u32 n) {
    untilFault_ = n;
    faultSeen_ = false;
  }
  bool faultSeen() const { return faultSeen_; }

  size_t outstanding() const { return blocks_.size(); }
  size_t calls() const { return calls_; }
  size_t lastSize() const { return lastSize_; }
  u32 lastFlags() const { return lastFlags_; }

  void* take(size_t size, u32 flags, i32& status) {
    ++calls_;
    lastSize_ = size;
    lastFlags_ = flags;
    EXPECT_EQ(status, 0) << "asked with an old error";
    bool const fault = untilFault_ != 0 && --untilFault_ == 0;
    faultSeen_ = faultSeen_ || fault;
    if (fault || size > kLargestBlock) {
      status = kStatusOutOfMemory;
      return nullptr;
    }
    void* const block = std::malloc(size);
    std::memset(block, 0xCD, size);
    blocks_.insert(block);
    return block;
  }

  // What is read of it afterwards is seen.
  void give(void* block) {
    if (block != nullptr) {
      EXPECT_EQ(blocks_.erase(block), 1u) << "not a block that is out";
      std::memset(block, 0xDD, malloc_usable_size(block));
      std::free(block);
    }
  }

 private:
  static constexpr size_t kLargestBlock = size_t{1} << 26;

  std::unordered_set<void*> blocks_;
  size_t calls_ = 0;
  size_t lastSize_ = 0;
  u32 lastFlags_ = 0;
  u32 untilFault_ = 0;
  bool faultSeen_ = false;
};

inline void* _memNewUsingCRT(size_t size, u32 flags, i32& status) noexcept {
  return tTestAllocator::get().take(size, flags, status);
}

inline void _memDelete(void* block) noexcept {
  tTestAllocator::get().give(block);
}

// Every test ends with all memory given back.
class StlTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(allocator.outstanding(), 0u); }
  void TearDown() override {
    allocator.failNth(0);
    EXPECT_EQ(allocator.outstanding(), 0u) << "blocks were left behind";
  }

  tTestAllocator& allocator = tTestAllocator::get();
};
