// Kernel mutexes by one thread and by several.

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "waiting.h"

namespace {

class KernelMutex : public testing::Test {
 protected:
  KernelMutex() { KeInitializeMutex(&m_mutex, 0); }

  NTSTATUS lookFromAnotherThread() {
    NTSTATUS status = STATUS_UNSUCCESSFUL;
    std::thread([&] {
      status = look(&m_mutex);
      if (status == STATUS_SUCCESS) KeReleaseMutex(&m_mutex, 0);
    }).join();
    return status;
  }

  KMUTEX m_mutex;
};

TEST_F(KernelMutex, ItStartsFree) {
  EXPECT_EQ(lookFromAnotherThread(), STATUS_SUCCESS);
}

TEST_F(KernelMutex, ItsOwnerKeepsOthersOut) {
  EXPECT_EQ(waitForever(&m_mutex), STATUS_SUCCESS);
  EXPECT_EQ(lookFromAnotherThread(), STATUS_TIMEOUT);
  EXPECT_EQ(KeReleaseMutex(&m_mutex, 0), 0);
  EXPECT_EQ(lookFromAnotherThread(), STATUS_SUCCESS);
}

TEST_F(KernelMutex, ItIsGivenBackAsOftenAsItWasTaken) {
  for (int i = 0; i < 3; ++i) EXPECT_EQ(waitForever(&m_mutex), STATUS_SUCCESS);
  EXPECT_LT(KeReleaseMutex(&m_mutex, 0), 0);
  EXPECT_LT(KeReleaseMutex(&m_mutex, 0), 0);
  EXPECT_EQ(lookFromAnotherThread(), STATUS_TIMEOUT);
  EXPECT_EQ(KeReleaseMutex(&m_mutex, 0), 0);
  EXPECT_EQ(lookFromAnotherThread(), STATUS_SUCCESS);
}

TEST_F(KernelMutex, TakingItDoesNotRaiseTheLevel) {
  waitForever(&m_mutex);
  EXPECT_EQ(KeGetCurrentIrql(), PASSIVE_LEVEL);
  KeReleaseMutex(&m_mutex, 0);
}

TEST_F(KernelMutex, AWaiterGetsItWhenTheOwnerGivesItBack) {
  waitForever(&m_mutex);
  NTSTATUS status = STATUS_UNSUCCESSFUL;
  std::thread waiter([&] {
    status = waitFor(&m_mutex, inMilliseconds(20'000));
    KeReleaseMutex(&m_mutex, 0);
  });
  pause(50);
  waitForever(&m_mutex);
  KeReleaseMutex(&m_mutex, 0);
  KeReleaseMutex(&m_mutex, 0);
  waiter.join();
  EXPECT_EQ(status, STATUS_SUCCESS);
}

TEST_F(KernelMutex, AWaitForAnOwnedOneTimesOut) {
  waitForever(&m_mutex);
  NTSTATUS status = STATUS_UNSUCCESSFUL;
  std::thread([&] { status = waitFor(&m_mutex, inMilliseconds(30)); }).join();
  EXPECT_EQ(status, STATUS_TIMEOUT);
  KeReleaseMutex(&m_mutex, 0);
}

// What `kThreads` threads add up, each holding the mutex `depth` times over.
constexpr int kThreads = 4;
constexpr int kRounds = 10'000;

int countUnder(KMUTEX& mutex, int depth) {
  int count = 0;
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&] {
      for (int round = 0; round < kRounds; ++round) {
        for (int taken = 0; taken < depth; ++taken) waitForever(&mutex);
        ++count;
        for (int taken = 0; taken < depth; ++taken) KeReleaseMutex(&mutex, 0);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  return count;
}

TEST_F(KernelMutex, NoIncrementIsLostUnderIt) {
  EXPECT_EQ(countUnder(m_mutex, 1), kThreads * kRounds);
}

TEST_F(KernelMutex, NoIncrementIsLostUnderItTakenTwice) {
  EXPECT_EQ(countUnder(m_mutex, 2), kThreads * kRounds);
}

}  // namespace
