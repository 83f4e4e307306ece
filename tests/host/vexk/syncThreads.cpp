// Locks between threads.

#include <gtest/gtest.h>
#include <sched.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

#include "platformSupport.h"
#include "vexk/statusCodes.h"
#include "vexk/threadUtility.h"

namespace {

constexpr char kSharedLock[] = "vexkHostSyncThreads::_lock";

// Runs an operation in another thread and waits for its result.
template <class Operation>
auto inAnotherThread(Operation operation) {
  decltype(operation()) result{};
  std::thread([&] { result = operation(); }).join();
  return result;
}

// Another thread that owns a lock until it is told to let go.
class tOwner {
 public:
  explicit tOwner(iSync& sync)
      : thread([this, &sync] {
          EXPECT_EQ(0, sync.acquire(kSyncWaitForever));
          owns = true;
          while (!mayRelease) std::this_thread::yield();
          EXPECT_EQ(0, sync.release());
        }) {
    while (!owns) std::this_thread::yield();
  }
  ~tOwner() { letGo(); }
  tOwner(tOwner const&) = delete;
  tOwner& operator=(tOwner const&) = delete;

  void letGo() {
    mayRelease = true;
    if (thread.joinable()) thread.join();
  }

 private:
  std::atomic<bool> owns{false};
  std::atomic<bool> mayRelease{false};
  std::thread thread;
};

i64 millisecondsOf(auto operation) {
  auto const start = std::chrono::steady_clock::now();
  operation();
  return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() -
                                                               start)
      .count();
}

}  // namespace

TEST(VexkHostSyncThreads, OnlyOneThreadIsInside) {
  tRunningPlatform const platform;
  constexpr u32 kVisitors = 4;
  constexpr u32 kEntries = 2000;
  u32 counter = 0;  // not atomic: the thread sanitizer watches it
  std::vector<std::thread> threads;
  for (u32 i = 0; i < kVisitors; ++i) {
    threads.emplace_back([&counter] {
      tOpenLock const lock(kSharedLock);
      for (u32 round = 0; round < kEntries; ++round) {
        tSyncLock const held(lock.sync);
        tSyncLock const heldAgain(lock.sync);
        ++counter;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(kVisitors * kEntries, counter);
}

TEST(VexkHostSyncThreads, ATryFailsAtOnceWhileAnotherThreadOwnsTheLock) {
  tRunningPlatform const platform;
  tOpenLock const lock(nullptr);
  tOwner owner(*lock.sync);
  EXPECT_EQ(kStatusSyncTimeout, lock->acquire(0));
  owner.letGo();
  EXPECT_EQ(0, lock->acquire(0));
  EXPECT_EQ(0, lock->release());
}

TEST(VexkHostSyncThreads, AWaitEndsAfterItsTime) {
  tRunningPlatform const platform;
  tOpenLock const lock(nullptr);
  tOwner const owner(*lock.sync);
  i32 status = 0;
  i64 const elapsed = millisecondsOf([&] { status = lock->acquire(30); });
  EXPECT_EQ(kStatusSyncTimeout, status);
  EXPECT_LE(30, elapsed);
}

TEST(VexkHostSyncThreads, AFailedWaitOwnsNothing) {
  tRunningPlatform const platform;
  tOpenLock const lock(nullptr);
  tOwner const owner(*lock.sync);
  tSyncLock const held(lock.sync, 1);
  EXPECT_EQ(kStatusSyncTimeout, held.getStatus());
  EXPECT_EQ(kStatusSyncNotOwner, lock->release());
}

TEST(VexkHostSyncThreads, AWaitWithoutLimitGetsTheLockInTheEnd) {
  tRunningPlatform const platform;
  tOpenLock const lock(nullptr);
  tOwner owner(*lock.sync);
  std::atomic<i32> status{1};
  std::thread waiter([&] {
    i32 const result = lock->acquire(kSyncWaitForever);
    if (result == 0) lock->release();
    status = result;
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(20));  // time to get it, if it can
  EXPECT_EQ(1, status);
  owner.letGo();
  waiter.join();
  EXPECT_EQ(0, status);
}

TEST(VexkHostSyncThreads, TheLongestTimeoutIsNotForEver) {
  tRunningPlatform const platform;
  tOpenLock const lock(nullptr);
  EXPECT_EQ(0, lock->acquire(kSyncWaitForever - 1));
  EXPECT_EQ(0, lock->release());
}

TEST(VexkHostSyncThreads, AnotherThreadCannotRelease) {
  tRunningPlatform const platform;
  tOpenLock const lock(nullptr);
  EXPECT_EQ(0, lock->acquire(0));
  EXPECT_EQ(kStatusSyncNotOwner, inAnotherThread([&] { return lock->release(); }));
  EXPECT_EQ(kStatusSyncTimeout, inAnotherThread([&] { return lock->acquire(0); }));
  EXPECT_EQ(0, lock->release());
}

TEST(VexkHostSyncThreads, ARecursiveOwnerKeepsTheLockUntilTheLastRelease) {
  tRunningPlatform const platform;
  tOpenLock const lock(nullptr);
  EXPECT_EQ(0, lock->acquire(0));
  EXPECT_EQ(0, lock->acquire(0));
  EXPECT_EQ(0, lock->release());
  EXPECT_EQ(kStatusSyncTimeout, inAnotherThread([&] { return lock->acquire(0); }));
  EXPECT_EQ(0, lock->release());
  EXPECT_EQ(0, inAnotherThread([&] {
              i32 const status = lock->acquire(0);
              lock->release();
              return status;
            }));
}

TEST(VexkHostSyncThreads, HandlesOfOneNameExcludeEachOther) {
  tRunningPlatform const platform;
  tOpenLock const here(kSharedLock);
  tOpenLock const there(kSharedLock);
  tOpenLock const elsewhere("vexkHostSyncThreads::_other");
  tOwner const owner(*here.sync);
  EXPECT_EQ(kStatusSyncTimeout, there->acquire(0));
  EXPECT_EQ(0, elsewhere->acquire(0));
  EXPECT_EQ(0, elsewhere->release());
}

TEST(VexkHostSyncThreads, TheLastHandleIsNotClosedWhileAnotherThreadOwnsTheLock) {
  tRunningPlatform const platform;
  tOpenLock lock(kSharedLock);
  iSync* const before = lock.sync;
  tOwner owner(*lock.sync);
  EXPECT_EQ(kStatusSyncInUse, syncClose(lock.sync));
  EXPECT_EQ(before, lock.sync);
  owner.letGo();
  EXPECT_EQ(0, syncClose(lock.sync));
}

TEST(VexkHostSyncThreads, AnotherHandleIsClosedWhileAThreadOwnsTheLock) {
  tRunningPlatform const platform;
  tOpenLock const owned(kSharedLock);
  tOpenLock spare(kSharedLock);
  tOwner const owner(*owned.sync);
  EXPECT_EQ(0, syncClose(spare.sync));
  EXPECT_EQ(nullptr, spare.sync);
}

TEST(VexkHostSyncThreads, ManyThreadsOpenAndCloseTheSameName) {
  tRunningPlatform const platform;
  std::vector<std::thread> threads;
  std::atomic<u32> failures{0};
  for (u32 i = 0; i < 4; ++i) {
    threads.emplace_back([&failures] {
      for (u32 round = 0; round < 300; ++round) {
        tOpenLock const lock(kSharedLock);
        if (lock.sync == nullptr || lock->acquire(kSyncWaitForever) != 0 || lock->release() != 0) {
          ++failures;
        }
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(0u, failures);
}

TEST(VexkHostSyncThreadsDeathTest, AnOwnerThatEndsStopsTheProgram) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(
      {
        tRunningPlatform const platform;
        tOpenLock const lock(nullptr);
        std::thread([&] { EXPECT_EQ(lock->acquire(kSyncWaitForever), 0); }).join();
      },
      "A thread ended within a critical region");
}

TEST(VexkHostThread, LivingThreadsHaveDifferentIds) {
  u32 const own = tThreadUtility::getCurrentThreadId();
  EXPECT_NE(own, inAnotherThread([] { return tThreadUtility::getCurrentThreadId(); }));
}

TEST(VexkHostThread, TheIdIsTheSystemsThreadId) {
  ntoshost::overrideCurrentThreadId(26);
  EXPECT_EQ(26u, tThreadUtility::getCurrentThreadId());
  ntoshost::overrideCurrentThreadId(0x1'0000'001A);
  EXPECT_EQ(26u, tThreadUtility::getCurrentThreadId());
  ntoshost::overrideCurrentThreadId(0);
  EXPECT_NE(26u, tThreadUtility::getCurrentThreadId());
}

// As an interrupt upon the idle thread of each processor that this program may use.
TEST(VexkHostThread, TheIdlingThreadsHaveIdsByTheirProcessors) {
  std::thread([] {
    ntoshost::overrideCurrentThreadId(u64{1} << 32);
    for (u32 processor = 0; processor != static_cast<u32>(sysconf(_SC_NPROCESSORS_CONF));
         ++processor) {
      cpu_set_t own;
      CPU_ZERO(&own);
      CPU_SET(processor, &own);
      if (sched_setaffinity(0, sizeof own, &own) != 0) continue;
      EXPECT_EQ(1 + 4 * processor, tThreadUtility::getCurrentThreadId());
    }
  }).join();
}
