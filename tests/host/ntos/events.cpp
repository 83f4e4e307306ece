// Events of both kinds, by one thread and by several.

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "waiting.h"

namespace {

constexpr i64 kLongMilliseconds = 20'000;
constexpr i64 kShortMilliseconds = 100;

KEVENT makeEvent(EVENT_TYPE type, bool state) {
  KEVENT event;
  KeInitializeEvent(&event, type, state);
  return event;
}

// How many of `count` threads get the event within the time.
int waitersLetGo(KEVENT& event, int count, i64 milliseconds, void (*meanwhile)(KEVENT&)) {
  std::atomic<int> letGo = 0;
  std::vector<std::thread> threads;
  threads.reserve(static_cast<size_t>(count));
  for (int i = 0; i < count; ++i) {
    threads.emplace_back([&] {
      if (waitFor(&event, inMilliseconds(milliseconds)) == STATUS_SUCCESS) ++letGo;
    });
  }
  meanwhile(event);
  for (std::thread& thread : threads) thread.join();
  return letGo;
}

TEST(Event, ItsStartingStateIsTheOneAskedFor) {
  for (EVENT_TYPE type : {NotificationEvent, SynchronizationEvent}) {
    KEVENT set = makeEvent(type, true);
    KEVENT clear = makeEvent(type, false);
    EXPECT_EQ(look(&set), STATUS_SUCCESS);
    EXPECT_EQ(look(&clear), STATUS_TIMEOUT);
  }
}

TEST(Event, ANotificationEventStaysSet) {
  KEVENT event = makeEvent(NotificationEvent, true);
  EXPECT_EQ(look(&event), STATUS_SUCCESS);
  EXPECT_EQ(look(&event), STATUS_SUCCESS);
}

TEST(Event, ASynchronizationEventIsTakenOnce) {
  KEVENT event = makeEvent(SynchronizationEvent, true);
  EXPECT_EQ(look(&event), STATUS_SUCCESS);
  EXPECT_EQ(look(&event), STATUS_TIMEOUT);
}

TEST(Event, SettingTwiceIsSettingOnce) {
  KEVENT event = makeEvent(SynchronizationEvent, false);
  EXPECT_EQ(KeSetEvent(&event, 0, 0), 0);
  EXPECT_NE(KeSetEvent(&event, 0, 0), 0);
  EXPECT_EQ(look(&event), STATUS_SUCCESS);
  EXPECT_EQ(look(&event), STATUS_TIMEOUT);
}

TEST(Event, ResettingTellsWhetherItWasSet) {
  KEVENT event = makeEvent(NotificationEvent, true);
  EXPECT_NE(KeResetEvent(&event), 0);
  EXPECT_EQ(KeResetEvent(&event), 0);
  EXPECT_EQ(look(&event), STATUS_TIMEOUT);
}

TEST(Event, ClearingClears) {
  KEVENT event = makeEvent(NotificationEvent, true);
  KeClearEvent(&event);
  EXPECT_EQ(look(&event), STATUS_TIMEOUT);
}

TEST(Event, LookingIsAllowedAtDispatchLevel) {
  KEVENT event = makeEvent(NotificationEvent, false);
  KIRQL previous;
  KeRaiseIrql(DISPATCH_LEVEL, &previous);
  KeSetEvent(&event, 0, 0);
  EXPECT_EQ(look(&event), STATUS_SUCCESS);
  KeLowerIrql(previous);
}

TEST(Event, ANotificationEventLetsEveryWaiterGo) {
  KEVENT event = makeEvent(NotificationEvent, false);
  auto const setLater = [](KEVENT& it) {
    pause(kShortMilliseconds);
    KeSetEvent(&it, 0, 0);
  };
  EXPECT_EQ(waitersLetGo(event, 4, kLongMilliseconds, setLater), 4);
}

TEST(Event, ASynchronizationEventLetsOneWaiterGo) {
  KEVENT event = makeEvent(SynchronizationEvent, false);
  auto const setOnce = [](KEVENT& it) { KeSetEvent(&it, 0, 0); };
  EXPECT_EQ(waitersLetGo(event, 4, 5 * kShortMilliseconds, setOnce), 1);
}

TEST(Event, WhatWasWrittenBeforeTheSetIsSeenAfterTheWait) {
  KEVENT event = makeEvent(SynchronizationEvent, false);
  int number = 0;
  std::thread writer([&] {
    number = 42;
    KeSetEvent(&event, 0, 0);
  });
  EXPECT_EQ(waitForever(&event), STATUS_SUCCESS);
  EXPECT_EQ(number, 42);
  writer.join();
}

TEST(Event, TwoThreadsPlayPingPongWithoutLosingABall) {
  constexpr int kBalls = 20'000;
  KEVENT ping = makeEvent(SynchronizationEvent, false);
  KEVENT pong = makeEvent(SynchronizationEvent, false);
  int balls = 0;
  std::thread other([&] {
    for (int i = 0; i < kBalls; ++i) {
      waitForever(&ping);
      ++balls;
      KeSetEvent(&pong, 0, 0);
    }
  });
  for (int i = 0; i < kBalls; ++i) {
    KeSetEvent(&ping, 0, 0);
    waitForever(&pong);
    ++balls;
  }
  other.join();
  EXPECT_EQ(balls, 2 * kBalls);
}

}  // namespace
