// Remove locks by one thread and by several.

#include "ntos/removeLock.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "waiting.h"

namespace {

class RemoveLock : public testing::Test {
 protected:
  RemoveLock() { IoInitializeRemoveLock(&m_lock, 0); }

  IO_REMOVE_LOCK m_lock;
  int m_one = 0;
  int m_two = 0;
};

TEST_F(RemoveLock, ItCountsWhoIsIn) {
  EXPECT_EQ(m_lock.Common.IoCount, 1);
  EXPECT_EQ(IoAcquireRemoveLock(&m_lock, &m_one), STATUS_SUCCESS);
  EXPECT_EQ(IoAcquireRemoveLock(&m_lock, &m_one), STATUS_SUCCESS);
  EXPECT_EQ(IoAcquireRemoveLock(&m_lock, &m_two), STATUS_SUCCESS);
  EXPECT_EQ(m_lock.Common.IoCount, 4);
  IoReleaseRemoveLock(&m_lock, &m_two);
  IoReleaseRemoveLock(&m_lock, &m_one);
  IoReleaseRemoveLock(&m_lock, &m_one);
  EXPECT_EQ(m_lock.Common.IoCount, 1);
}

TEST_F(RemoveLock, ADrainedOneLetsNobodyIn) {
  ASSERT_EQ(IoAcquireRemoveLock(&m_lock, &m_one), STATUS_SUCCESS);
  IoReleaseRemoveLockAndWait(&m_lock, &m_one);
  EXPECT_EQ(m_lock.Common.Removed, 1);
  EXPECT_EQ(m_lock.Common.IoCount, 0);
  EXPECT_EQ(IoAcquireRemoveLock(&m_lock, &m_two), STATUS_DELETE_PENDING);
  EXPECT_EQ(m_lock.Common.IoCount, 0);
}

TEST_F(RemoveLock, AnInitialisedOneIsFreshAgain) {
  ASSERT_EQ(IoAcquireRemoveLock(&m_lock, &m_one), STATUS_SUCCESS);
  IoReleaseRemoveLockAndWait(&m_lock, &m_one);
  IoInitializeRemoveLock(&m_lock, 0);
  EXPECT_EQ(IoAcquireRemoveLock(&m_lock, &m_one), STATUS_SUCCESS);
  IoReleaseRemoveLock(&m_lock, &m_one);
}

TEST_F(RemoveLock, DrainingWaitsForTheOthers) {
  ASSERT_EQ(IoAcquireRemoveLock(&m_lock, &m_one), STATUS_SUCCESS);
  ASSERT_EQ(IoAcquireRemoveLock(&m_lock, &m_two), STATUS_SUCCESS);
  bool isReleased = false;
  std::thread other([&] {
    pause(50);
    __atomic_store_n(&isReleased, true, __ATOMIC_SEQ_CST);
    IoReleaseRemoveLock(&m_lock, &m_two);
  });
  IoReleaseRemoveLockAndWait(&m_lock, &m_one);
  EXPECT_TRUE(__atomic_load_n(&isReleased, __ATOMIC_SEQ_CST));
  other.join();
}

TEST_F(RemoveLock, ItIsEnteredAtDispatchLevel) {
  KIRQL before;
  KeRaiseIrql(DISPATCH_LEVEL, &before);
  EXPECT_EQ(IoAcquireRemoveLock(&m_lock, &m_one), STATUS_SUCCESS);
  IoReleaseRemoveLock(&m_lock, &m_one);
  KeLowerIrql(before);
}

TEST_F(RemoveLock, NobodyIsInWhenDrainingReturns) {
  int inside = 0;
  std::vector<std::thread> threads;
  threads.reserve(4);
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      while (NT_SUCCESS(IoAcquireRemoveLock(&m_lock, &inside))) {
        __atomic_add_fetch(&inside, 1, __ATOMIC_RELAXED);
        __atomic_sub_fetch(&inside, 1, __ATOMIC_RELAXED);
        IoReleaseRemoveLock(&m_lock, &inside);
      }
    });
  }
  pause(20);
  ASSERT_EQ(IoAcquireRemoveLock(&m_lock, &m_one), STATUS_SUCCESS);
  IoReleaseRemoveLockAndWait(&m_lock, &m_one);
  EXPECT_EQ(__atomic_load_n(&inside, __ATOMIC_RELAXED), 0);
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
