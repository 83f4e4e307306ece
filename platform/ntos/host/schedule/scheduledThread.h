#pragma once

#include "ntos/types.h"
#include "ntoshost/schedule.h"
#include "wait/deadline.h"

namespace ntoshost {

// One of the threads of ntoshost/schedule.h. Everything but `turn` belongs to the thread that runs.
struct ScheduledThread {
  enum class State { Ended, Ready, Yielded, Parked };

  State state;
  u64 since;  // steps that all threads had made when it yielded or was parked
  i32* word;  // it is parked while this is `seen`
  i32 seen;
  bool isTimed;
  i64 end;  // of a timed wait, as the performance counter shows it
  bool isLate;
  bool isStarted;
  ScheduledBody body;
  u32 turn;  // 1: it may go on
};

// The calling thread, null when it is not scheduled.
extern constinit thread_local ScheduledThread* g_scheduled
    __attribute__((tls_model("initial-exec")));

// parkWhile for a scheduled thread.
bool parkScheduled(i32* word, i32 seen, Deadline const& deadline);

}  // namespace ntoshost
