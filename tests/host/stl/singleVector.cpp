// The vector with a place of its own for one element: against a model with allocations failing now
// and then, and what needs no memory.

#include <random>
#include <vector>

#include "content.h"
#include "stl/single_vector.h"
#include "testAllocator.h"

namespace {

using tNumbers = _STL::single_vector<u32>;

class StlSingleVector : public StlTest {
 protected:
  // A vector of the numbers from `first` on.
  static tNumbers numbers(u32 first, u32 count) {
    tNumbers made;
    for (u32 index = 0; index < count; ++index) EXPECT_TRUE(made.push_back(first + index));
    return made;
  }

  static std::vector<u32> asModel(tNumbers const& subject) {
    EXPECT_EQ(subject.begin(), subject.data());
    EXPECT_EQ(subject.get().size(), subject.size());
    EXPECT_EQ(subject.get().data(), subject.data());
    return {subject.begin(), subject.end()};
  }
};

// Two vectors and what they must hold.
struct tPair {
  tNumbers subjects[2];
  std::vector<u32> models[2];
};

}  // namespace

TEST_F(StlSingleVector, OneElementNeedsNoMemory) {
  size_t const before = allocator.calls();
  tNumbers one = numbers(7, 1);
  tNumbers copy(one);
  tNumbers other;
  other = copy;
  other.swap(one);
  EXPECT_TRUE(one == other);
  EXPECT_EQ(asModel(other), std::vector<u32>{7});
  EXPECT_EQ(allocator.calls(), before);
}

TEST_F(StlSingleVector, CopyIsIndependent) {
  for (u32 count = 0; count < 6; ++count) {
    tNumbers original = numbers(1, count);
    tNumbers const copy(original);
    std::vector<u32> const before = asModel(original);
    ASSERT_TRUE(original.push_back(99));
    ASSERT_TRUE(original.assign(nullptr, 3));
    EXPECT_TRUE(original.empty());
    EXPECT_EQ(asModel(copy), before);
  }
}

TEST_F(StlSingleVector, SwapOfAnyTwoSizesExchangesThem) {
  for (u32 left = 0; left < 6; ++left) {
    for (u32 right = 0; right < 6; ++right) {
      tNumbers first = numbers(10, left);
      tNumbers second = numbers(20, right);
      first.swap(second);
      EXPECT_TRUE(first == numbers(20, right)) << left << " and " << right;
      EXPECT_TRUE(second == numbers(10, left)) << left << " and " << right;
      ASSERT_TRUE(first.push_back(1) && second.push_back(2));
      EXPECT_EQ(asModel(first).back(), 1u);
      EXPECT_EQ(asModel(second).back(), 2u);
    }
  }
}

TEST_F(StlSingleVector, OwnElementsAreTakenAsOthersAre) {
  tNumbers some = numbers(1, 4);
  ASSERT_TRUE(some.assign(some.data() + 1, 3));
  EXPECT_EQ(asModel(some), (std::vector<u32>{2, 3, 4}));
  for (u32 count = 0; count < 9; ++count) ASSERT_TRUE(some.push_back(*some.begin()));
  EXPECT_EQ(asModel(some).back(), 2u);
}

TEST_F(StlSingleVector, CopyWithoutMemoryIsEmptyAndSaysSo) {
  tNumbers const original = numbers(1, 2);
  allocator.failNth(1);
  tNumbers const copy(original);
  EXPECT_TRUE(copy.hasFailed());
  EXPECT_TRUE(copy.empty());
  EXPECT_FALSE(original.hasFailed());
}

TEST_F(StlSingleVector, RandomOperationsLeaveWhatTheModelHolds) {
  std::mt19937 random(20260514);
  tPair pair;
  u32 faults = 0;
  for (u32 step = 0; step < 100'000; ++step) {
    u32 const which = random() % 2;
    tNumbers& subject = pair.subjects[which];
    std::vector<u32>& model = pair.models[which];
    allocator.failNth(random() % 3);
    bool done = true;
    switch (random() % 5) {
      case 0: {
        u32 const value = static_cast<u32>(random());
        done = subject.push_back(value);
        if (done) model.push_back(value);
        break;
      }
      case 1: {
        std::vector<u32> const fresh(random() % 5, static_cast<u32>(random()));
        done = subject.assign(fresh.data(), fresh.size());
        if (done) model = fresh;
        break;
      }
      case 2:
        subject.swap(pair.subjects[1 - which]);
        model.swap(pair.models[1 - which]);
        break;
      case 3: {  // without storage, so that growth happens again and again
        tNumbers fresh;
        subject.swap(fresh);
        model.clear();
        break;
      }
      default: {
        tNumbers const copy(pair.subjects[1 - which]);
        ASSERT_EQ(copy.hasFailed(), allocator.faultSeen());
        ASSERT_EQ(asModel(copy), copy.hasFailed() ? std::vector<u32>() : pair.models[1 - which]);
        break;
      }
    }
    faults += done ? 0 : 1;
    ASSERT_TRUE(done || (allocator.faultSeen() && subject.hasFailed())) << "step " << step;
    ASSERT_EQ(asModel(subject), model) << "step " << step;
  }
  allocator.failNth(0);
  EXPECT_GT(faults, 500u);
  pair = tPair();
}
