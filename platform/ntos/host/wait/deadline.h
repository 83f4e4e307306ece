#pragma once

#include <time.h>

#include "ntos/types.h"

namespace ntoshost {

// Until when to wait: the timeout of KeWaitForSingleObject as a point of time on a clock.
class Deadline {
 public:
  // `timeout` in units of 100 ns: null for ever, 0 now, below 0 a span, above 0 since 1601.
  explicit Deadline(LARGE_INTEGER const* timeout);

  bool isNow() const { return m_kind == Kind::now; }

  // Null when it is for ever.
  timespec const* getTime() const { return m_kind == Kind::later ? &m_time : nullptr; }
  bool isOnRealTimeClock() const { return m_clock == CLOCK_REALTIME; }

 private:
  enum class Kind { never, now, later };

  void set(clockid_t clock, u64 ticks);

  Kind m_kind;
  clockid_t m_clock = CLOCK_MONOTONIC;
  timespec m_time = {};
};

}  // namespace ntoshost
