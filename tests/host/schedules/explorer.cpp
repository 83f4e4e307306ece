// That the explorer goes where it says: each fault of these models is found, and by no fewer
// preemptions than it takes.

#include <algorithm>

#include "schedules/tExplorer.h"

namespace {

constexpr unsigned kIncrements = 2;

// What a model that is known to be wrong has seen, over all of its schedules.
struct tSeen {
  bool wasLost = false;
  u64 schedules = 0;
};
tSeen seen;

// Two threads that each add to a number which they read before.
template <unsigned more>
class tCounter {
 public:
  static constexpr unsigned kThreads = 2;

  void run(unsigned) {
    for (unsigned i = 0; i < kIncrements; ++i) {
      unsigned const read = number;
      ntoshost::schedulePoint();
      number = read + 1;
      for (unsigned point = 0; point < more; ++point) ntoshost::schedulePoint();
    }
  }
  void finish() const {
    ++seen.schedules;
    seen.wasLost |= number != kThreads * kIncrements;
  }

 private:
  unsigned number = 0;
};

// Each thread has points only, so the schedules can be counted.
class tPoints {
 public:
  void run(unsigned thread) {
    order = order * 2 + thread;
    ntoshost::schedulePoint();
    order = order * 2 + thread;
  }
  void finish() const { orders.push_back(order); }

  static inline std::vector<unsigned> orders;

 private:
  unsigned order = 1;
};

}  // namespace

TEST(Explorer, FindsALostAdditionWithOnePreemption) {
  seen = {};
  explore<tCounter<0>>("counterByOne", {1, 0});
  EXPECT_TRUE(seen.wasLost);
}

TEST(Explorer, DoesNotFindItWithout) {
  if (OXDIAG_ROUND_DIVISOR == 1) GTEST_SKIP() << "goes one preemption further";
  tExplorer explorer("counterByNone", {0, 0});
  bool wasLost = false;
  while (explorer.begin()) {
    seen = {};
    tCounter<3> counter;
    explorer.run(2, [&](unsigned thread) { counter.run(thread); });
    counter.finish();
    wasLost |= seen.wasLost && explorer.isCounted();
    explorer.end();
  }
  EXPECT_FALSE(wasLost);
}

TEST(Explorer, FindsItAtRandom) {
  seen = {};
  explore<tCounter<3>>("counterAtRandom", {tReach::kRandomOnly, 200});
  EXPECT_TRUE(seen.wasLost);
}

// Of the six orders of two and two steps, in which the last step of a thread and its end are one.
TEST(Explorer, GoesThroughEveryOrderOnce) {
  tPoints::orders.clear();
  tExplorer explorer("points", {tReach::kExhaustive, 0});
  while (explorer.begin()) {
    tPoints points;
    explorer.run(2, [&](unsigned thread) { points.run(thread); });
    if (explorer.isCounted()) points.finish();
    explorer.end();
  }
  std::vector<unsigned> orders = tPoints::orders;
  std::sort(orders.begin(), orders.end());
  EXPECT_EQ(std::unique(orders.begin(), orders.end()), orders.end());
  EXPECT_EQ(orders, (std::vector<unsigned>{0x13, 0x15, 0x16, 0x19, 0x1A, 0x1C}));
}
