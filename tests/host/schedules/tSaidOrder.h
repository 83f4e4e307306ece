#pragma once

// Runs threads in one order that a test says, see ntoshost/schedule.h.

#include <functional>
#include <vector>

#include "ntoshost/schedule.h"

// Whether the thread may go on, or the wait of the thread may run out of time.
inline bool mayRun(ntoshost::SchedulePoint const& point, u32 thread) {
  return (point.choices >> thread & 1) != 0;
}
constexpr u32 expiryOf(u32 thread) {
  return ntoshost::kMostScheduledThreads + thread;
}

// `choose` says who is to go on; where that one may not, any other one does.
inline void runInOrder(std::vector<std::function<void()>> threads,
                       std::function<u32(ntoshost::SchedulePoint const&)> choose) {
  std::vector<ntoshost::ScheduledBody> bodies;
  for (std::function<void()>& thread : threads) {
    bodies.push_back({[](void* work) { (*static_cast<std::function<void()>*>(work))(); }, &thread});
  }
  ntoshost::ScheduleChooser const chooser = {
      [](void* context, ntoshost::SchedulePoint const& point) {
        auto const& said =
            *static_cast<std::function<u32(ntoshost::SchedulePoint const&)>*>(context);
        u32 const wanted = said(point);
        return mayRun(point, wanted) ? wanted : static_cast<u32>(__builtin_ctz(point.choices));
      },
      &choose, 100'000};
  ntoshost::runScheduled(bodies.data(), static_cast<u32>(bodies.size()), chooser);
}

// Of two threads, the first makes so many steps, then the second one, then the first to its end.
inline std::function<u32(ntoshost::SchedulePoint const&)> firstThenSecond(u32 first, u32 second) {
  return [first, second](ntoshost::SchedulePoint const& point) mutable -> u32 {
    first = mayRun(point, 0) ? first : 0;
    second = first != 0 || mayRun(point, 1) ? second : 0;
    u32 const next = first != 0 || second == 0 ? 0 : 1;
    u32& left = next == 0 ? first : second;
    if (left != 0) --left;
    return next;
  };
}
