#pragma once

#include <chrono>
#include <thread>

#include "ntos/irql.h"
#include "ntos/sync.h"

// Waiting in tests, with times in milliseconds.

constexpr i64 kTicksPerMillisecond = 10'000;

inline LARGE_INTEGER inMilliseconds(i64 milliseconds) {
  LARGE_INTEGER timeout;
  timeout.QuadPart = -milliseconds * kTicksPerMillisecond;
  return timeout;
}

inline NTSTATUS waitFor(void* object, LARGE_INTEGER timeout) {
  return KeWaitForSingleObject(object, Executive, KernelMode, 0, &timeout);
}

inline NTSTATUS waitForever(void* object) {
  return KeWaitForSingleObject(object, Executive, KernelMode, 0, nullptr);
}

// Takes the object if that needs no waiting.
inline NTSTATUS look(void* object) {
  return waitFor(object, inMilliseconds(0));
}

// Time for what has to wait to go on, if it can.
inline void pause(i64 milliseconds) {
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}
