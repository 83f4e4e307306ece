#include "ntoshost/schedule.h"

#include <pthread.h>
#include <stdio.h>
#include <time.h>

#include "ntos/time.h"
#include "ntoshost/time.h"
#include "ntoshost/violation.h"
#include "ownLock.h"
#include "schedule/scheduledThread.h"
#include "schedule/turn.h"

namespace ntoshost {

constinit thread_local ScheduledThread* g_scheduled = nullptr;
constinit thread_local u32 g_ownLocks = 0;

namespace {

using State = ScheduledThread::State;

constexpr u32 kNobody = kMostScheduledThreads;
constexpr u32 kAllRunning = (1u << kMostScheduledThreads) - 1;  // of a point's choices
constexpr i64 kNanosecondsPerCount = 100;
constexpr i64 kNanosecondsPerSecond = 1'000'000'000;

// What passes while no thread can go on, so that a loop of short waits comes to its end.
constexpr i64 kIdleTime = 5'000'000;  // half a second

constinit ScheduledThread g_threads[kMostScheduledThreads] = {};
constinit u32 g_count = 0;
constinit ScheduleChooser g_chooser = {};
constinit u64 g_points = 0;
constinit u64 g_steps = 0;
constinit u32 g_callersTurn = 0;

u32 numberOf(ScheduledThread const& thread) {
  return static_cast<u32>(&thread - g_threads);
}

i64 counterNow() {
  return KeQueryPerformanceCounter(nullptr).QuadPart;
}

// When the wait ends.
i64 endOf(Deadline const& deadline) {
  timespec now;
  clock_gettime(deadline.isOnRealTimeClock() ? CLOCK_REALTIME : CLOCK_MONOTONIC, &now);
  timespec const& end = *deadline.getTime();
  i64 const nanoseconds =
      end.tv_nsec - now.tv_nsec + kNanosecondsPerSecond * (end.tv_sec - now.tv_sec);
  return counterNow() + nanoseconds / kNanosecondsPerCount;
}

// The bit with which a thread may go on now, 0 when it may not.
u32 choiceOf(ScheduledThread const& thread) {
  u32 const bit = 1u << numberOf(thread);
  bool const hasOtherStepped = g_steps != thread.since;
  switch (thread.state) {
    case State::Ready:
      return bit;
    case State::Yielded:
      return hasOtherStepped ? bit : 0;
    case State::Parked:
      if (__atomic_load_n(thread.word, __ATOMIC_SEQ_CST) != thread.seen) return bit;
      return thread.isTimed && hasOtherStepped ? bit << kMostScheduledThreads : 0;
    default:
      return 0;
  }
}

u32 countEnded() {
  u32 ended = 0;
  for (u32 i = 0; i < g_count; ++i) ended += g_threads[i].state == State::Ended ? 1 : 0;
  return ended;
}

[[noreturn]] void rejectSchedule(char const* what) {
  char waiting[80] = "";
  int length = 0;
  for (u32 i = 0; i < g_count; ++i) {
    if (g_threads[i].state == State::Ended) continue;
    length += snprintf(waiting + length, sizeof(waiting) - static_cast<size_t>(length), " %u", i);
  }
  violation("The schedule %s; threads that have not ended:%s.", what, waiting);
}

// When nobody else can go on: of the waits with a time the first to end; without one, a thread that
// repeats itself, whom the number of points bounds.
u32 lastChoice() {
  ScheduledThread const* first = nullptr;
  u32 repeating = 0;
  for (u32 i = 0; i < g_count; ++i) {
    ScheduledThread const& thread = g_threads[i];
    if (thread.state == State::Yielded) repeating = 1u << i;
    if (thread.state != State::Parked || !thread.isTimed) continue;
    if (first == nullptr || thread.end < first->end) first = &thread;
  }
  if (first == nullptr && repeating != 0) return repeating;
  if (first == nullptr) rejectSchedule("ends in a deadlock");
  moveTime(kIdleTime);
  return 1u << (numberOf(*first) + kMostScheduledThreads);
}

u32 findChoices() {
  u32 choices = 0;
  for (u32 i = 0; i < g_count; ++i) choices |= choiceOf(g_threads[i]);
  return (choices & kAllRunning) != 0 ? choices : lastChoice();
}

// The thread that goes on from a point to which `current` has come.
ScheduledThread& chooseNext(u32 current) {
  if (++g_points > g_chooser.mostPoints) rejectSchedule("does not end");
  u32 const choices = findChoices();
  bool const mayStay = current != kNobody && (choices >> current & 1) != 0;
  u32 const chosen = g_chooser.choose(g_chooser.context, {current, mayStay, choices});
  if ((choices >> chosen & 1) == 0) violation("The chooser of a schedule chose %u.", chosen);
  ScheduledThread& next = g_threads[chosen % kMostScheduledThreads];
  next.isLate = chosen >= kMostScheduledThreads;
  i64 const early = next.isLate ? next.end - counterNow() : 0;
  if (early > 0) moveTime(early);
  next.state = State::Ready;
  ++g_steps;
  return next;
}

void pass(ScheduledThread& self) {
  ScheduledThread& next = chooseNext(numberOf(self));
  if (&next == &self) return;
  giveTurn(next.turn);
  awaitTurn(self.turn);
}

void end(ScheduledThread& self) {
  self.state = State::Ended;
  giveTurn(countEnded() == g_count ? g_callersTurn : chooseNext(numberOf(self)).turn);
}

void* work(void* place) {
  ScheduledThread& self = *static_cast<ScheduledThread*>(place);
  g_scheduled = &self;
  for (;;) {
    awaitTurn(self.turn);
    self.body.run(self.body.context);
    end(self);
  }
  return nullptr;
}

void start(ScheduledThread& thread) {
  if (thread.isStarted) return;
  pthread_t id;
  if (pthread_create(&id, nullptr, work, &thread) != 0)
    violation("There is no thread to schedule.");
  pthread_detach(id);
  thread.isStarted = true;
}

}  // namespace

bool parkScheduled(i32* word, i32 seen, Deadline const& deadline) {
  ScheduledThread& self = *g_scheduled;
  self.word = word;
  self.seen = seen;
  self.isTimed = deadline.getTime() != nullptr;
  self.end = self.isTimed ? endOf(deadline) : 0;
  self.since = g_steps;
  self.state = State::Parked;
  pass(self);
  return !self.isLate;
}

u64 runScheduled(ScheduledBody const* bodies, u32 count, ScheduleChooser const& chooser) {
  if (count == 0 || count > kMostScheduledThreads) violation("%u threads were scheduled.", count);
  g_chooser = chooser;
  g_count = count;
  g_points = 0;
  g_steps = 0;
  for (u32 i = 0; i < count; ++i) {
    start(g_threads[i]);
    g_threads[i].body = bodies[i];
    g_threads[i].state = State::Ready;
  }
  giveTurn(chooseNext(kNobody).turn);
  awaitTurn(g_callersTurn);
  return g_points;
}

void schedulePoint() {
  if (g_scheduled != nullptr && g_ownLocks == 0) pass(*g_scheduled);
}

void scheduleYield() {
  if (g_scheduled == nullptr) return;
  g_scheduled->since = g_steps;
  g_scheduled->state = State::Yielded;
  pass(*g_scheduled);
}

}  // namespace ntoshost
