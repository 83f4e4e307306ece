#pragma once

// Work that is suspended at each of its calls of the executive in turn.

#include <atomic>
#include <thread>

#include "ntoshost/thread.h"

// Runs `work` in a thread that is asked to be suspended at its nth call, and `meanwhile` once when
// it is. False when it has made fewer calls than that.
template <class Work, class Meanwhile>
bool suspendAt(u64 n, Work work, Meanwhile meanwhile) {
  constexpr u32 kAMoment = 5;  // milliseconds
  std::atomic<bool> isDone = false;
  bool wasAsked = false;
  std::thread worker([&] {
    ntoshost::suspendAtCall(n);
    work();
    wasAsked = ntoshost::wasSuspensionAsked();
    isDone = true;
  });
  bool isFirst = true;
  while (!isDone) {
    if (!ntoshost::awaitSuspended(kAMoment)) continue;
    if (isFirst) meanwhile();
    isFirst = false;
    ntoshost::resumeThreads();
  }
  worker.join();
  return wasAsked;
}

// The same for n from 1 on, until `work` makes no more calls. Returns how many it made.
template <class Work, class Meanwhile>
u64 suspendAtEachCall(Work work, Meanwhile meanwhile) {
  u64 n = 1;
  while (suspendAt(n, work, meanwhile)) ++n;
  return n - 1;
}
