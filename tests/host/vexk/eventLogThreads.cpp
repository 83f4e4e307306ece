// The event log under writers and readers that never wait for each other.

#include <gtest/gtest.h>

#include <atomic>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "ntos/irql.h"
#include "ntoshost/executive.h"
#include "vexk/eventLog.h"

namespace {

constexpr u32 kWriters = 3;
constexpr u32 kRounds = 2000;

// The text of a writer's event: the same letter over and over, so that a mixed one shows.
std::string textOf(u32 writer, u32 round) {
  return std::string(10 + round % 180, static_cast<char>('a' + writer));
}

void writeEvents(u32 writer) {
  for (u32 round = 0; round < kRounds; ++round) {
    _vexLogEvent("w", "", writer, "%s", textOf(writer, round).c_str());
  }
}

bool isWhole(tVexEvent const& event) {
  std::string const text = event.text;
  if (text.size() < 12 || text.compare(0, 2, "w ") != 0 || event.level >= kWriters) return false;
  std::set<char> const letters(text.begin() + 2, text.end());
  return letters == std::set<char>{static_cast<char>('a' + event.level)};
}

u64 findNext() {
  tVexEvent event;
  u64 next = 1;
  while (vexReadEvent(next, event)) next = event.number + 1;
  return next;
}

// Reads until the writers are done; returns how many events it has seen.
u64 readAll(u64 next, std::atomic<bool> const& isDone) {
  u64 seen = 0;
  bool wasDone = false;
  while (!wasDone) {
    wasDone = isDone;
    tVexEvent event;
    while (vexReadEvent(next, event)) {
      EXPECT_GE(event.number, next);
      EXPECT_TRUE(isWhole(event)) << event.text;
      next = event.number + 1;
      ++seen;
    }
  }
  return seen;
}

}  // namespace

TEST(EventLogThreads, WhatIsReadIsWhole) {
  u32 const before = vexPrintEvents(kVexEventNever);
  u64 const first = findNext();
  std::atomic<bool> isDone = false;
  u64 seen = 0;
  std::thread reader([&] { seen = readAll(first, isDone); });
  std::vector<std::thread> writers;
  for (u32 writer = 0; writer < kWriters; ++writer) writers.emplace_back(&writeEvents, writer);
  for (std::thread& writer : writers) writer.join();
  isDone = true;
  reader.join();
  vexPrintEvents(before);
  EXPECT_GE(seen, kVexEventCount / 2);  // the rest may have met in its place
  EXPECT_LE(seen, kWriters * kRounds);
  tVexEvent event;
  EXPECT_FALSE(vexReadEvent(first + kWriters * kRounds, event));
}

TEST(EventLogThreads, AnEventComesAtEveryIrqlAndTakesNoMemory) {
  u32 const before = vexPrintEvents(kVexEventNever);
  ntoshost::failFrom(ntoshost::kFaultAll, 1);
  KIRQL irql = 0;
  KeRaiseIrql(HIGH_LEVEL, &irql);
  _vexLogEvent("high", "", 0, "%s %d", "text", 1);
  pkgModulePackageEventLog(0, "high.dll", "", "", nullptr);
  KeLowerIrql(irql);
  u64 const calls = ntoshost::fallibleCallsSeen();
  ntoshost::clearFaults();
  vexPrintEvents(before);
  EXPECT_EQ(calls, 0u);
}
