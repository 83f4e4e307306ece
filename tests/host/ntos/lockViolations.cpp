// What events and mutexes do not put up with.

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "ntos/thread.h"
#include "waiting.h"

namespace {

class LockViolationsDeathTest : public testing::Test {
 protected:
  LockViolationsDeathTest() {
    KeInitializeEvent(&m_event, NotificationEvent, 0);
    KeInitializeMutex(&m_mutex, 0);
    ExInitializeFastMutex(&m_fastMutex);
  }

  KEVENT m_event;
  KMUTEX m_mutex;
  FAST_MUTEX m_fastMutex;
};

// The calling thread's level stays raised: only for what dies.
void raise(KIRQL level) {
  KIRQL previous;
  KeRaiseIrql(level, &previous);
}

TEST_F(LockViolationsDeathTest, AMutexIsReleasedByItsOwnerOnly) {
  waitForever(&m_mutex);
  EXPECT_DEATH(
      std::thread([&] { KeReleaseMutex(&m_mutex, 0); }).join(),
      "ntos: KeReleaseMutex: the mutex at 0x[0-9a-f]+ is not owned by the calling thread\\."
      "\n$");
  KeReleaseMutex(&m_mutex, 0);
}

TEST_F(LockViolationsDeathTest, AFreeMutexIsNotReleased) {
  waitForever(&m_mutex);
  KeReleaseMutex(&m_mutex, 0);
  EXPECT_DEATH(KeReleaseMutex(&m_mutex, 0), "is not owned by the calling thread");
}

TEST_F(LockViolationsDeathTest, AFastMutexIsNotTakenTwice) {
  ExAcquireFastMutex(&m_fastMutex);
  EXPECT_DEATH(
      ExAcquireFastMutex(&m_fastMutex),
      "ntos: ExAcquireFastMutex: the thread already owns the fast mutex at 0x[0-9a-f]+ and "
      "would wait for itself\\.\n$");
  ExReleaseFastMutex(&m_fastMutex);
}

TEST_F(LockViolationsDeathTest, AFastMutexIsReleasedByItsOwnerOnly) {
  ExAcquireFastMutex(&m_fastMutex);
  EXPECT_DEATH(std::thread([&] { ExReleaseFastMutex(&m_fastMutex); }).join(),
               "ExReleaseFastMutex: the fast mutex at 0x[0-9a-f]+ is not owned by the calling "
               "thread\\.");
  ExReleaseFastMutex(&m_fastMutex);
}

TEST_F(LockViolationsDeathTest, AFreeFastMutexIsNotReleased) {
  EXPECT_DEATH(ExReleaseFastMutex(&m_fastMutex), "is not owned by the calling thread");
}

TEST_F(LockViolationsDeathTest, AFastMutexIsTakenUpToApcLevel) {
  EXPECT_DEATH(
      (raise(DISPATCH_LEVEL), ExAcquireFastMutex(&m_fastMutex)),
      "ExAcquireFastMutex was called at IRQL 2 \\(DISPATCH_LEVEL\\); it may be called up to "
      "IRQL 1 \\(APC_LEVEL\\)\\.");
}

TEST_F(LockViolationsDeathTest, AFastMutexIsReleasedAtApcLevel) {
  ExAcquireFastMutex(&m_fastMutex);
  EXPECT_DEATH((KeLowerIrql(PASSIVE_LEVEL), ExReleaseFastMutex(&m_fastMutex)),
               "ExReleaseFastMutex was called at IRQL 0 \\(PASSIVE_LEVEL\\); it must be at IRQL 1");
  EXPECT_DEATH(
      (raise(DISPATCH_LEVEL), ExReleaseFastMutex(&m_fastMutex)),
      "ExReleaseFastMutex was called at IRQL 2 \\(DISPATCH_LEVEL\\); it must be at IRQL 1");
  ExReleaseFastMutex(&m_fastMutex);
}

TEST_F(LockViolationsDeathTest, NobodyWaitsAtDispatchLevel) {
  EXPECT_DEATH((raise(DISPATCH_LEVEL), waitForever(&m_event)),
               "KeWaitForSingleObject was called at IRQL 2");
  EXPECT_DEATH((raise(DISPATCH_LEVEL), waitFor(&m_event, inMilliseconds(1))),
               "KeWaitForSingleObject was called at IRQL 2");
}

TEST_F(LockViolationsDeathTest, NobodyLooksAboveDispatchLevel) {
  EXPECT_DEATH((raise(3), look(&m_event)),
               "KeWaitForSingleObject without waiting was called at IRQL 3");
}

TEST_F(LockViolationsDeathTest, EventsAndMutexesAreChangedUpToDispatchLevel) {
  EXPECT_DEATH((raise(3), KeSetEvent(&m_event, 0, 0)), "KeSetEvent was called at IRQL 3");
  EXPECT_DEATH((raise(3), KeClearEvent(&m_event)), "KeClearEvent was called at IRQL 3");
  EXPECT_DEATH((raise(3), KeResetEvent(&m_event)), "KeResetEvent was called at IRQL 3");
  EXPECT_DEATH((raise(3), KeReleaseMutex(&m_mutex, 0)), "KeReleaseMutex was called at IRQL 3");
}

TEST_F(LockViolationsDeathTest, WhatWasNeverInitialisedIsRefused) {
  KMUTEX mutex = {};
  FAST_MUTEX fastMutex = {};
  KEVENT event = {};
  EXPECT_DEATH(waitForever(&mutex),
               "KeWaitForSingleObject was given something at 0x[0-9a-f]+ that is "
               "no initialised event or mutex\\.");
  EXPECT_DEATH(KeSetEvent(&event, 0, 0), "KeSetEvent was given .* no initialised event\\.");
  EXPECT_DEATH(KeClearEvent(&event), "KeClearEvent was given .* no initialised event\\.");
  EXPECT_DEATH(KeResetEvent(&event), "KeResetEvent was given .* no initialised event\\.");
  EXPECT_DEATH(KeReleaseMutex(&mutex, 0), "KeReleaseMutex was given .* no initialised mutex\\.");
  EXPECT_DEATH(ExAcquireFastMutex(&fastMutex), "given .* no initialised fast mutex\\.");
  EXPECT_DEATH(ExReleaseFastMutex(&fastMutex), "given .* no initialised fast mutex\\.");
}

TEST_F(LockViolationsDeathTest, AnEventIsNoMutex) {
  KMUTEX mutex = {};
  mutex.Header = m_event.Header;
  EXPECT_DEATH(KeReleaseMutex(&mutex, 0), "no initialised mutex");
}

TEST_F(LockViolationsDeathTest, AThreadEndsWithoutLocks) {
  EXPECT_DEATH(std::thread([&] { waitForever(&m_mutex); }).join(),
               "ntos: A thread ended while it owned the mutex at 0x[0-9a-f]+\\.\n$");
  EXPECT_DEATH(std::thread([&] { ExAcquireFastMutex(&m_fastMutex); }).join(),
               "ntos: A thread ended while it owned the fast mutex at 0x[0-9a-f]+\\.\n$");
}

TEST_F(LockViolationsDeathTest, AThreadEndsOutsideCriticalRegions) {
  EXPECT_DEATH(std::thread(KeEnterCriticalRegion).join(),
               "ntos: A thread ended within a critical region\\.\n$");
  EXPECT_DEATH(std::thread([] {
                 KeEnterCriticalRegion();
                 KeEnterCriticalRegion();
                 KeLeaveCriticalRegion();
               }).join(),
               "A thread ended within a critical region");
}

TEST_F(LockViolationsDeathTest, ACriticalRegionIsLeftByTheThreadThatEnteredIt) {
  EXPECT_DEATH(KeLeaveCriticalRegion(),
               "ntos: KeLeaveCriticalRegion was called by a thread that is in no critical "
               "region\\.\n$");
  KeEnterCriticalRegion();
  EXPECT_DEATH(std::thread(KeLeaveCriticalRegion).join(), "that is in no critical region");
  KeLeaveCriticalRegion();
  EXPECT_DEATH(KeLeaveCriticalRegion(), "that is in no critical region");
}

TEST_F(LockViolationsDeathTest, CriticalRegionsAreEnteredAndLeftUpToApcLevel) {
  EXPECT_DEATH((raise(DISPATCH_LEVEL), KeEnterCriticalRegion()),
               "KeEnterCriticalRegion was called at IRQL 2");
  KeEnterCriticalRegion();
  EXPECT_DEATH((raise(DISPATCH_LEVEL), KeLeaveCriticalRegion()),
               "KeLeaveCriticalRegion was called at IRQL 2");
  KeLeaveCriticalRegion();
}

TEST_F(LockViolationsDeathTest, AThreadOwnsUpTo64Mutexes) {
  std::vector<KMUTEX> mutexes(65);
  for (KMUTEX& mutex : mutexes) KeInitializeMutex(&mutex, 0);
  for (size_t i = 0; i < 64; ++i) waitForever(&mutexes[i]);
  EXPECT_DEATH(waitForever(&mutexes[64]), "A thread owns more than 64 mutexes; the one at 0x");
  for (size_t i = 0; i < 64; ++i) KeReleaseMutex(&mutexes[i], 0);
}

TEST_F(LockViolationsDeathTest, AMutexCountsUpToALimit) {
  constexpr i32 kDeepest = -0x7FFFFFFF;
  waitForever(&m_mutex);
  m_mutex.Header.SignalState = kDeepest + 1;
  waitForever(&m_mutex);
  EXPECT_DEATH(waitForever(&m_mutex), "ntos: A mutex was taken more often than it can count\\.");
  m_mutex.Header.SignalState = 0;
  KeReleaseMutex(&m_mutex, 0);
}

TEST_F(LockViolationsDeathTest, SettingAndWaitingInOneIsRefused) {
  EXPECT_DEATH(KeSetEvent(&m_event, 0, 1), "KeSetEvent was asked to set and wait in one");
  EXPECT_DEATH(KeReleaseMutex(&m_mutex, 1), "KeReleaseMutex was asked to release and wait in one");
}

}  // namespace
