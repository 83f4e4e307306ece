// Fast mutexes by one thread and by several.

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "waiting.h"

namespace {

class FastMutex : public testing::Test {
 protected:
  FastMutex() { ExInitializeFastMutex(&m_mutex); }

  FAST_MUTEX m_mutex;
};

TEST_F(FastMutex, ItsOwnerRunsAtApcLevel) {
  ExAcquireFastMutex(&m_mutex);
  EXPECT_EQ(KeGetCurrentIrql(), APC_LEVEL);
  ExReleaseFastMutex(&m_mutex);
  EXPECT_EQ(KeGetCurrentIrql(), PASSIVE_LEVEL);
}

TEST_F(FastMutex, TheLevelGoesBackToWhereItWas) {
  KIRQL previous;
  KeRaiseIrql(APC_LEVEL, &previous);
  ExAcquireFastMutex(&m_mutex);
  ExReleaseFastMutex(&m_mutex);
  EXPECT_EQ(KeGetCurrentIrql(), APC_LEVEL);
  KeLowerIrql(previous);
}

TEST_F(FastMutex, TwoOfThemNest) {
  FAST_MUTEX inner;
  ExInitializeFastMutex(&inner);
  ExAcquireFastMutex(&m_mutex);
  ExAcquireFastMutex(&inner);
  ExReleaseFastMutex(&inner);
  EXPECT_EQ(KeGetCurrentIrql(), APC_LEVEL);
  ExReleaseFastMutex(&m_mutex);
  EXPECT_EQ(KeGetCurrentIrql(), PASSIVE_LEVEL);
}

TEST_F(FastMutex, AFreeOneHasTheDocumentedCount) {
  EXPECT_EQ(m_mutex.Count, 1);
  ExAcquireFastMutex(&m_mutex);
  EXPECT_LT(m_mutex.Count, 1);
  ExReleaseFastMutex(&m_mutex);
  EXPECT_EQ(m_mutex.Count, 1);
}

TEST_F(FastMutex, AThreadWaitsForTheOwner) {
  ExAcquireFastMutex(&m_mutex);
  bool isOwnerDone = false;
  bool wasOwnerDone = false;
  std::thread waiter([&] {
    ExAcquireFastMutex(&m_mutex);
    wasOwnerDone = isOwnerDone;
    ExReleaseFastMutex(&m_mutex);
  });
  pause(50);
  isOwnerDone = true;
  ExReleaseFastMutex(&m_mutex);
  waiter.join();
  EXPECT_TRUE(wasOwnerDone);
}

TEST_F(FastMutex, NoIncrementIsLostUnderIt) {
  constexpr int kThreads = 4;
  constexpr int kRounds = 20'000;
  int count = 0;
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&] {
      for (int round = 0; round < kRounds; ++round) {
        ExAcquireFastMutex(&m_mutex);
        ++count;
        ExReleaseFastMutex(&m_mutex);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(count, kThreads * kRounds);
}

}  // namespace
