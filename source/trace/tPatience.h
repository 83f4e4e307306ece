#pragma once

#include "ntos/types.h"

namespace nOXDIAG100 {

// How long a switch of destinations waits for threads that do not come out of a put, or do not end
// their line.
constexpr u32 kMostPatience = 10'000;  // milliseconds

constexpr i64 kTicksOfMillisecond = -10'000;  // of the kernel's timer, from now: units of 100 ns

// The time that is left of kMostPatience, for one thread. It passes by the performance counter, and
// by the waits of the kernel's timer that the thread adds, should the counter stand still or run
// backwards. Any IRQL but for the pauses.
//
//     tPatience const patience;
//     while (isSomebodyWithin()) {
//       if (patience.isOver()) return false;
//       patience.wait();
//     }
class tPatience {
 public:
  // Begins now.
  tPatience();

  bool isOver() const { return getRest() == 0; }
  bool hasPassed() const;  // as isOver, but never early
  u32 getRest() const;     // milliseconds

  // Waits for a millisecond, which is added. PASSIVE_LEVEL.
  void wait() const;

  // Adds a wait that the kernel's timer has ended.
  void addWait(u32 milliseconds) const { waited += milliseconds; }

  // Waits for a millisecond, for who waits without limit. PASSIVE_LEVEL.
  static void pause();

  // While exhausted, every patience is over from its beginning: who waits only looks. For waits for
  // several threads, or several times for one, once one of them was given up.
  static bool isExhausted();
  static void setExhausted(bool isExhausted);

 private:
  u64 getMilliseconds() const;

  mutable u64 lastCount;  // of the time base, when it was looked at last
  mutable u64 passedCounts = 0;
  mutable u64 waited = 0;  // milliseconds, by the kernel's timer
};

// Ends at the end of a scope what was exhausted in it.
class tPatienceScope {
 public:
  tPatienceScope() : wasExhausted(tPatience::isExhausted()) {}
  ~tPatienceScope() { tPatience::setExhausted(wasExhausted); }
  tPatienceScope(tPatienceScope const&) = delete;
  tPatienceScope& operator=(tPatienceScope const&) = delete;

 private:
  bool const wasExhausted;
};

}  // namespace nOXDIAG100
