#pragma once

// Fails allocation 1, 2, 3 ... of an operation until it runs through, and looks each time at what
// a failed operation promises.

#include "content.h"
#include "testAllocator.h"

// `prepare()` makes a container, `operation(container)` changes it and returns whether it was done.
// Returns how many allocations the operation needs when none fails.
template <class Prepare, class Operation>
u32 exhaust(Prepare prepare, Operation operation) {
  tTestAllocator& allocator = tTestAllocator::get();
  size_t const outside = allocator.outstanding();
  std::string wanted;
  {
    auto subject = prepare();
    EXPECT_TRUE(operation(subject));
    wanted = content(subject);
  }
  for (u32 n = 1;; ++n) {
    {
      auto subject = prepare();
      std::string const before = content(subject);
      size_t const capacity = allocator.outstanding();
      allocator.failNth(n);
      bool const done = operation(subject);
      bool const fault = allocator.faultSeen();
      allocator.failNth(0);
      EXPECT_EQ(done, !fault) << "allocation " << n;
      EXPECT_EQ(subject.hasFailed(), fault) << "allocation " << n;
      EXPECT_EQ(content(subject), fault ? before : wanted) << "allocation " << n;
      if (!fault) {
        return n - 1;
      }
      EXPECT_EQ(allocator.outstanding(), capacity) << "allocation " << n << " left a block";
      EXPECT_TRUE(operation(subject)) << "not usable after a failure of allocation " << n;
      EXPECT_EQ(content(subject), wanted) << "allocation " << n;
      EXPECT_TRUE(subject.hasFailed()) << "a later success hid the failure of allocation " << n;
    }
    EXPECT_EQ(allocator.outstanding(), outside) << "allocation " << n << " leaked";
  }
}

// The same for the construction of a container by `make()`, which must be empty when it failed.
template <class Make>
u32 exhaustConstruction(Make make) {
  tTestAllocator& allocator = tTestAllocator::get();
  size_t const outside = allocator.outstanding();
  std::string const wanted = content(make());
  for (u32 n = 1;; ++n) {
    bool fault = false;
    {
      allocator.failNth(n);
      auto subject = make();
      fault = allocator.faultSeen();
      allocator.failNth(0);
      EXPECT_EQ(subject.hasFailed(), fault) << "allocation " << n;
      EXPECT_EQ(subject.empty(), fault) << "allocation " << n;
      if (!fault) {
        EXPECT_EQ(content(subject), wanted);
      }
    }
    EXPECT_EQ(allocator.outstanding(), outside) << "allocation " << n << " leaked";
    if (!fault) {
      return n - 1;
    }
  }
}
