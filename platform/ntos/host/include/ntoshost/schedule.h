#pragma once

#include "ntos/types.h"

// Schedules: threads of which one runs at a time, until it comes to a point, where a chooser says
// who goes on. So a test runs an operation of several threads in every order, or in one order
// again.
//
// A point is each call of the strict executive that states a highest IRQL, each wait, and each call
// of schedulePoint(), which a test's own build of the library makes in front of every atomic
// operation. What a thread does between two points nobody comes between: memory is seen in one
// order by all threads, as if every atomic operation were a sequentially consistent one.
//
// Threads that wait for something else than the executive's objects are not seen to wait.

namespace ntoshost {

constexpr u32 kMostScheduledThreads = 4;

// Who may go on. Bit n stands for thread n; bit kMostScheduledThreads + n for thread n, of which
// the wait runs out of time.
struct SchedulePoint {
  u32 current;  // the thread that has come to the point; kMostScheduledThreads before the first
  bool mayStay;
  u32 choices;  // not 0
};

struct ScheduledBody {
  void (*run)(void* context);
  void* context;
};

struct ScheduleChooser {
  // Returns the number of a bit of `choices`. Called by one thread at a time, on any of them.
  u32 (*choose)(void* context, SchedulePoint const& point);
  void* context;
  u64 mostPoints;
};

// Runs the bodies, as threads 0, 1, ..., until all have returned. The threads are there from the
// first call to the end of the program. Returns how many points they came to. Stops the program
// when none of them can go on (a deadlock), and when they come to more points than `mostPoints`, as
// threads do that wait for each other in loops. One caller at a time.
//
// A wait with a time runs out at a point behind a step of another thread at which the chooser says
// so, and in any case when no thread can go on otherwise; then the one that ends first does. The
// performance counter moves on by that wait, and by half a second more when no thread can go on.
u64 runScheduled(ScheduledBody const* bodies, u32 count, ScheduleChooser const& chooser);

// A point; nothing in a thread that is not scheduled, and while it has a lock of the executive's
// own.
void schedulePoint();

// A point at which the thread only repeats itself until another one has made a step.
void scheduleYield();

}  // namespace ntoshost
