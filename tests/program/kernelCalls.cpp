// The kernel calls of platform/ntos/program as a program. Says what is wrong and returns how much
// that is.

#include <stdio.h>

#include "ntos/event.h"
#include "ntos/fastMutex.h"
#include "ntos/mutex.h"
#include "ntos/pool.h"
#include "ntos/status.h"
#include "ntos/thread.h"
#include "ntos/time.h"
#include "ntos/wait.h"
#include "tWorker.h"
#include "vexk/userMemory.h"

namespace {

constexpr u32 kTag = ntosPoolTag("Test");
constexpr int kRounds = 200;
constexpr i64 kUnitsPerMillisecond = 10'000;

int faults = 0;
KEVENT event;
KMUTEX mutex;
FAST_MUTEX fastMutex;
NTSTATUS answer = 0;

void expect(bool held, char const* what) {
  if (held) return;
  ++faults;
  printf("%s\n", what);
}

NTSTATUS waitFor(void* object, i64 milliseconds) {
  LARGE_INTEGER timeout;
  timeout.QuadPart = -milliseconds * kUnitsPerMillisecond;
  return KeWaitForSingleObject(object, Executive, KernelMode, 0, &timeout);
}

void waitForever(void* object) {
  KeWaitForSingleObject(object, Executive, KernelMode, 0, nullptr);
}

void checkEvents() {
  KeInitializeEvent(&event, SynchronizationEvent, 0);
  expect(waitFor(&event, 0) == STATUS_TIMEOUT, "an event that is not set lets nobody go");
  expect(KeSetEvent(&event, 0, 0) == 0, "an event tells that it was not set");
  expect(KeSetEvent(&event, 0, 0) == 1, "an event tells that it was set");
  expect(waitFor(&event, 0) == STATUS_SUCCESS, "an event that is set lets one go");
  expect(waitFor(&event, 5) == STATUS_TIMEOUT, "and no second one");
  KeInitializeEvent(&event, NotificationEvent, 1);
  expect(waitFor(&event, 0) == STATUS_SUCCESS, "a notification lets one go");
  expect(waitFor(&event, 0) == STATUS_SUCCESS, "and a second one");
  expect(KeResetEvent(&event) == 1, "a notification tells that it was set");
  expect(waitFor(&event, 0) == STATUS_TIMEOUT, "a notification that was taken back");
}

void checkDeadline() {
  KeInitializeEvent(&event, SynchronizationEvent, 0);
  LARGE_INTEGER start;
  KeQuerySystemTime(&start);
  LARGE_INTEGER deadline;
  deadline.QuadPart = start.QuadPart + 50 * kUnitsPerMillisecond;
  NTSTATUS const status = KeWaitForSingleObject(&event, Executive, KernelMode, 0, &deadline);
  LARGE_INTEGER end;
  KeQuerySystemTime(&end);
  expect(status == STATUS_TIMEOUT, "a wait ends at a point in time");
  expect(end.QuadPart - start.QuadPart >= 40 * kUnitsPerMillisecond, "and not long before");
}

void setLater() {
  tWorker::sleep(20);  // until the other thread waits
  KeSetEvent(&event, 0, 0);
}

void checkWaiting() {
  KeInitializeEvent(&event, SynchronizationEvent, 0);
  tWorker const worker(&setLater);
  waitForever(&event);
  expect(waitFor(&event, 0) == STATUS_TIMEOUT, "who waited has taken the event");
}

void tryMutex() {
  answer = waitFor(&mutex, 5);
}

NTSTATUS answerOfAnother() {
  { tWorker const worker(&tryMutex); }
  return answer;
}

void checkMutex() {
  KeInitializeMutex(&mutex, 0);
  waitForever(&mutex);
  expect(waitFor(&mutex, 0) == STATUS_SUCCESS, "the owner takes a mutex again");
  KeReleaseMutex(&mutex, 0);
  expect(answerOfAnother() == STATUS_TIMEOUT, "a mutex is free too early");
  expect(KeReleaseMutex(&mutex, 0) == 0, "the last release tells that it was owned");
  expect(answerOfAnother() == STATUS_SUCCESS, "a mutex that is free is taken");
}

// Each lock has a sum of its own, so that no lock stands in for the other.
u64 volatile sums[2] = {};

// Lets the other thread in where it can.
void addSlowly(u64 volatile& number) {
  u64 const former = number;
  tWorker::sleep(0);
  number = former + 1;
}

void addApart() {
  for (int round = 0; round < kRounds; ++round) {
    ExAcquireFastMutex(&fastMutex);
    addSlowly(sums[0]);
    ExReleaseFastMutex(&fastMutex);
    waitForever(&mutex);
    addSlowly(sums[1]);
    KeReleaseMutex(&mutex, 0);
  }
}

void checkExclusion() {
  ExInitializeFastMutex(&fastMutex);
  KeInitializeMutex(&mutex, 0);
  {
    tWorker const worker(&addApart);
    addApart();
  }
  expect(sums[0] == 2 * kRounds, "a fast mutex lets one in");
  expect(sums[1] == 2 * kRounds, "a mutex lets one in");
}

void checkMachine() {
  void* const block = ExAllocatePoolWithTag(NonPagedPool, 100, kTag);
  expect(block != nullptr, "there is no pool");
  ExFreePoolWithTag(block, kTag);
  LARGE_INTEGER frequency;
  LARGE_INTEGER const start = KeQueryPerformanceCounter(&frequency);
  tWorker::sleep(20);  // is what the counter measures
  i64 const passed = KeQueryPerformanceCounter(nullptr).QuadPart - start.QuadPart;
  expect(passed * 1000 / frequency.QuadPart >= 15, "the counter counts at another rate");
  expect(PsGetCurrentThreadId() != nullptr, "a thread has no number");
}

void checkUserMemory() {
  char const text[] = "text";
  char copy[sizeof(text)] = {};
  expect(vexCopyFromUser(copy, reinterpret_cast<u64>(text), sizeof(text)) == sizeof(text) &&
             copy[3] == 't',
         "memory is copied");
  expect(vexCopyFromUser(copy, 16, sizeof(copy)) == 0, "there is no memory at 16");
  expect(vexCopyToUser(16, text, sizeof(text)) == 0, "nothing is written at 16");
}

}  // namespace

int main() {
  checkEvents();
  checkDeadline();
  checkWaiting();
  checkMutex();
  checkExclusion();
  checkMachine();
  checkUserMemory();
  printf("%d faults\n", faults);
  return faults == 0 ? 0 : 1;
}
