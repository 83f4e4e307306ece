// How long KeWaitForSingleObject waits.

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "ntos/time.h"
#include "waiting.h"

namespace {

constexpr i64 kMilliseconds = 60;
constexpr i64 kTicksFrom1601To1970 = 116'444'736'000'000'000;

// Ticks of 100 ns that a wait for something that never comes takes.
i64 ticksWaited(LARGE_INTEGER timeout) {
  KEVENT never;
  KeInitializeEvent(&never, NotificationEvent, 0);
  i64 const start = KeQueryPerformanceCounter(nullptr).QuadPart;
  EXPECT_EQ(waitFor(&never, timeout), STATUS_TIMEOUT);
  return KeQueryPerformanceCounter(nullptr).QuadPart - start;
}

LARGE_INTEGER atWallTime(i64 millisecondsFromNow) {
  auto const now = std::chrono::system_clock::now().time_since_epoch();
  i64 const ticks = std::chrono::duration_cast<std::chrono::nanoseconds>(now).count() / 100;
  LARGE_INTEGER time;
  time.QuadPart = kTicksFrom1601To1970 + ticks + millisecondsFromNow * kTicksPerMillisecond;
  return time;
}

TEST(Wait, ASpanIsWaitedInFull) {
  EXPECT_GE(ticksWaited(inMilliseconds(kMilliseconds)), kMilliseconds * kTicksPerMillisecond);
}

TEST(Wait, ATimeOfDayIsWaitedFor) {
  LARGE_INTEGER const time = atWallTime(kMilliseconds);
  ticksWaited(time);
  EXPECT_GE(atWallTime(0).QuadPart, time.QuadPart);
}

TEST(Wait, ATimeInThePastIsNotWaitedFor) {
  LARGE_INTEGER longAgo;
  longAgo.QuadPart = 1;
  ticksWaited(longAgo);
  ticksWaited(atWallTime(-1000));
}

TEST(Wait, AWaitThatEndsInTimeSucceeds) {
  KEVENT event;
  KeInitializeEvent(&event, NotificationEvent, 0);
  std::thread setter([&] {
    pause(kMilliseconds);
    KeSetEvent(&event, 0, 0);
  });
  EXPECT_EQ(waitFor(&event, inMilliseconds(20'000)), STATUS_SUCCESS);
  setter.join();
}

TEST(Wait, TheLongestSpanIsAWaitLikeAnyOther) {
  KEVENT event;
  KeInitializeEvent(&event, NotificationEvent, 0);
  std::thread setter([&] {
    pause(kMilliseconds);
    KeSetEvent(&event, 0, 0);
  });
  LARGE_INTEGER longest;
  longest.QuadPart = INT64_MIN;
  EXPECT_EQ(waitFor(&event, longest), STATUS_SUCCESS);
  setter.join();
}

TEST(Wait, ATimeoutIsNoError) {
  EXPECT_TRUE(NT_SUCCESS(STATUS_TIMEOUT));
}

}  // namespace
