// Threads that are suspended, and what keeps that off: regions, mutexes, the IRQL.

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>

#include "ntos/thread.h"
#include "ntoshost/executive.h"
#include "waiting.h"

namespace {

constexpr u32 kAtOnce = 20'000;  // milliseconds, of which it takes hardly one
constexpr u32 kAWhile = 30;

// A call of the executive that changes nothing.
void call() {
  KEVENT event;
  KeInitializeEvent(&event, NotificationEvent, 0);
}

// A thread that is asked at its nth call. Its work ends, whatever the test has seen.
class tWorker {
 public:
  tWorker(u64 n, std::function<void()> work)
      : thread([this, n, work] {
          ntoshost::suspendAtCall(n);
          work();
          wasAsked = ntoshost::wasSuspensionAsked();
          isDone = true;
        }) {}
  ~tWorker() { finish(); }

  void finish() {
    while (!isDone) {
      ntoshost::resumeThreads();
      std::this_thread::yield();
    }
    if (thread.joinable()) thread.join();
  }

  std::atomic<bool> isDone = false;
  std::atomic<bool> wasAsked = false;

 private:
  std::thread thread;
};

// Whether a thread that is asked at its first call within is suspended before it is out again.
bool isSuspendedBetween(std::function<void()> enter, std::function<void()> leave) {
  std::atomic<bool> isWithin = false;
  std::atomic<bool> mayLeave = false;
  tWorker worker(0, [&] {
    enter();
    ntoshost::suspendAtCall(1);
    isWithin = true;
    call();
    while (!mayLeave) std::this_thread::yield();
    leave();
  });
  while (!isWithin) std::this_thread::yield();
  bool const isSuspended = ntoshost::awaitSuspended(kAWhile);
  mayLeave = true;
  if (!isSuspended) {
    EXPECT_TRUE(ntoshost::awaitSuspended(kAtOnce));
    EXPECT_FALSE(worker.isDone);
  }
  worker.finish();
  return isSuspended;
}

}  // namespace

TEST(Suspension, ComesAtTheNthCall) {
  std::atomic<int> calls = 0;
  tWorker worker(3, [&] {
    for (; calls < 5; ++calls) call();
  });
  EXPECT_TRUE(ntoshost::awaitSuspended(kAtOnce));
  EXPECT_EQ(calls, 2);
  EXPECT_FALSE(worker.isDone);
  worker.finish();
  EXPECT_EQ(calls, 5);
  EXPECT_TRUE(worker.wasAsked);
}

TEST(Suspension, DoesNotComeToAThreadThatEndsBefore) {
  tWorker worker(3, [] { call(); });
  EXPECT_FALSE(ntoshost::awaitSuspended(kAWhile));
  worker.finish();
  EXPECT_FALSE(worker.wasAsked);
}

TEST(Suspension, ComesToAThreadWithoutAnyLock) {
  EXPECT_TRUE(isSuspendedBetween([] {}, [] {}));
}

TEST(Suspension, WaitsForTheEndOfACriticalRegion) {
  EXPECT_FALSE(isSuspendedBetween(KeEnterCriticalRegion, KeLeaveCriticalRegion));
}

TEST(Suspension, WaitsForTheEndOfTheOutermostRegion) {
  auto const enter = [] {
    KeEnterCriticalRegion();
    KeEnterCriticalRegion();
    KeEnterGuardedRegion();
  };
  auto const leave = [] {
    KeLeaveGuardedRegion();
    KeLeaveCriticalRegion();
    EXPECT_FALSE(ntoshost::awaitSuspended(0));
    KeLeaveCriticalRegion();
  };
  EXPECT_FALSE(isSuspendedBetween(enter, leave));
}

TEST(Suspension, WaitsForTheEndOfAGuardedRegion) {
  EXPECT_FALSE(isSuspendedBetween(KeEnterGuardedRegion, KeLeaveGuardedRegion));
}

TEST(Suspension, WaitsForTheReleaseOfAMutex) {
  KMUTEX mutex;
  KeInitializeMutex(&mutex, 0);
  EXPECT_FALSE(
      isSuspendedBetween([&] { waitForever(&mutex); }, [&] { KeReleaseMutex(&mutex, 0); }));
}

TEST(Suspension, WaitsForTheReleaseOfAFastMutex) {
  FAST_MUTEX mutex;
  ExInitializeFastMutex(&mutex);
  EXPECT_FALSE(
      isSuspendedBetween([&] { ExAcquireFastMutex(&mutex); }, [&] { ExReleaseFastMutex(&mutex); }));
}

TEST(Suspension, WaitsForPassiveLevel) {
  KIRQL before = PASSIVE_LEVEL;
  EXPECT_FALSE(isSuspendedBetween([&] { KeRaiseIrql(DISPATCH_LEVEL, &before); },
                                  [&] { KeLowerIrql(before); }));
}

TEST(Suspension, ComesAtEachCallOfAWorkInTurn) {
  std::atomic<int> works = 0;
  int calls = 0;
  int meanwhiles = 0;
  auto const work = [&] {
    calls = 0;
    for (; calls < 3; ++calls) call();
    ++works;
  };
  u64 const count = ntoshost::suspendAtEachCall(work, [&] { EXPECT_EQ(calls, meanwhiles++); });
  EXPECT_EQ(count, 3u);
  EXPECT_EQ(meanwhiles, 3);
  EXPECT_EQ(works, 4);  // the last one has no fourth call
}

TEST(Suspension, OfAWorkThatMakesNoCallsDoesNotCome) {
  EXPECT_EQ(ntoshost::suspendAtEachCall([] {}, [] { FAIL(); }), 0u);
}

TEST(SuspensionDeathTest, NobodyWaitsForASuspendedThread) {
  KEVENT lock;
  KeInitializeEvent(&lock, SynchronizationEvent, 1);
  auto const useLock = [&] {
    waitForever(&lock);
    call();
    KeSetEvent(&lock, 0, 0);
  };
  EXPECT_DEATH(
      {
        ntoshost::setSuspensionPatience(100);
        ntoshost::suspendAtEachCall(useLock, useLock);
      },
      "Nobody has resumed a suspended thread within 100 milliseconds");
}
