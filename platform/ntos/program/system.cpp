#include "system.h"

#include <windows.h>

namespace ntosprogram {
namespace {

constinit SRWLOCK states = SRWLOCK_INIT;
constinit CONDITION_VARIABLE change = CONDITION_VARIABLE_INIT;

}  // namespace

void lockStates() {
  AcquireSRWLockExclusive(&states);
}

void unlockStates() {
  ReleaseSRWLockExclusive(&states);
}

bool awaitChange(u32 milliseconds) {
  static_assert(kForever == INFINITE);
  return SleepConditionVariableSRW(&change, &states, milliseconds, 0) != 0;
}

void announceChange() {
  WakeAllConditionVariable(&change);
}

u64 getThreadId() {
  return GetCurrentThreadId();
}

u32 getProcessorNumber() {
  return GetCurrentProcessorNumber();
}

u64 getUptime() {
  return GetTickCount64();
}

i64 getSystemTime() {
  FILETIME time;
  GetSystemTimeAsFileTime(&time);
  return static_cast<i64>(u64{time.dwHighDateTime} << 32 | time.dwLowDateTime);
}

i64 getCounter() {
  LARGE_INTEGER counter;
  QueryPerformanceCounter(&counter);
  return counter.QuadPart;
}

i64 getCounterFrequency() {
  LARGE_INTEGER frequency;
  QueryPerformanceFrequency(&frequency);
  return frequency.QuadPart;
}

}  // namespace ntosprogram
