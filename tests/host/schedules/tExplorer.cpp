#include "schedules/tExplorer.h"

#include <sched.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <utility>

#include "ntoshost/debugPrint.h"

extern "C" void __sanitizer_set_death_callback(void (*callback)()) __attribute__((weak));

namespace {

using ntoshost::kMostScheduledThreads;

constexpr unsigned long long kMostPoints = 20'000;
constexpr unsigned long long kSeed = 1;
constexpr unsigned kLongRandom = 30;
constexpr unsigned kShortExhaustive = 3;
constexpr unsigned kWarmUps = 40;
constexpr unsigned kSwitchesInHundred = 20;
constexpr size_t kMostText = 4000;
constexpr bool isLong = OXDIAG_ROUND_DIVISOR == 1;

unsigned preemptionsOf(tReach const& reach) {
  if (reach.preemptions == tReach::kExhaustive)
    return isLong ? tReach::kExhaustive : kShortExhaustive;
  if (reach.preemptions == tReach::kRandomOnly) return tReach::kRandomOnly;
  return reach.preemptions + (isLong ? 1 : 0);
}

unsigned countTrailing(unsigned bits) {
  return static_cast<unsigned>(__builtin_ctz(bits));
}

// Threads that hand on their turn do so several times faster on one processor.
void stayOnThisProcessor() {
  cpu_set_t set;
  CPU_ZERO(&set);
  CPU_SET(static_cast<size_t>(sched_getcpu()), &set);
  sched_setaffinity(0, sizeof(set), &set);
}

}  // namespace

tExplorer* tExplorer::current = nullptr;

tExplorer::tExplorer(std::string called, tReach far)
    : name(std::move(called)),
      reach({preemptionsOf(far), far.random * (isLong ? kLongRandom : 1)}) {
  warmUps = kWarmUps;
  stayOnThisProcessor();
  auto const onAbort = [](int signalNumber) {
    printCurrent();
    signal(signalNumber, SIG_DFL);
    raise(signalNumber);
  };
  signal(SIGABRT, onAbort);
  signal(SIGSEGV, onAbort);
  ntoshost::setDebugPrintSink([](void*, char const*, size_t) {}, nullptr);
  if (__sanitizer_set_death_callback != nullptr) __sanitizer_set_death_callback(&printCurrent);
  readReplay();
}

// "NAME:0*12,1*3": thread 0 twelve times, then thread 1 three times.
void tExplorer::readReplay() {
  char const* const text = getenv("OXDIAG_SCHEDULE");
  std::string const wanted = text == nullptr ? "" : text;
  if (wanted.compare(0, name.size() + 1, name + ":") != 0) return;
  isReplay = true;
  isRandom = false;
  warmUps = 0;
  char const* rest = text + name.size();
  while (*rest != 0) {
    char* end = nullptr;
    unsigned const choice = static_cast<unsigned>(strtoul(rest + 1, &end, 10));
    unsigned const times = *end == '*' ? static_cast<unsigned>(strtoul(end + 1, &end, 10)) : 1;
    prefix.insert(prefix.end(), times, choice);
    rest = *end == ',' ? end : "";
  }
}

bool tExplorer::begin() {
  if (isOver) return false;
  steps.clear();
  current = this;
  return true;
}

void tExplorer::run(unsigned threads, std::function<void(unsigned)> const& body) {
  struct tBody {
    std::function<void(unsigned)> const* run;
    unsigned thread;
  };
  tBody bodies[kMostScheduledThreads];
  ntoshost::ScheduledBody scheduled[kMostScheduledThreads];
  for (unsigned thread = 0; thread < threads; ++thread) {
    bodies[thread] = {&body, thread};
    scheduled[thread] = {[](void* context) {
                           auto const& own = *static_cast<tBody*>(context);
                           (*own.run)(own.thread);
                         },
                         &bodies[thread]};
  }
  ntoshost::runScheduled(scheduled, threads, {&tExplorer::choose, this, kMostPoints});
}

void tExplorer::end() {
  if (warmUps != 0) return endWarmUp();
  ++(isRandom ? randomSchedules : schedules);
  if (steps.size() > mostPoints) mostPoints = steps.size();
  if (testing::Test::HasFailure()) printCurrent();
  current = nullptr;
  isOver = isReplay || testing::Test::HasFailure() || !turnToNext();
}

// The schedules of a model are the same each time only when all is there that is made once.
void tExplorer::endWarmUp() {
  isOver = testing::Test::HasFailure();
  if (isOver) printCurrent();
  current = nullptr;
  if (--warmUps == 0) isRandom = reach.preemptions == tReach::kRandomOnly;
}

void tExplorer::report() const {
  std::string const reached = reach.preemptions == tReach::kExhaustive
                                  ? "all"
                                  : "up to " + std::to_string(reach.preemptions) + " preemptions";
  printf("schedules of %s: %llu (%s), %llu at random from seed %llu, up to %llu points\n",
         name.c_str(), schedules, reached.c_str(), randomSchedules, kSeed, mostPoints);
  testing::Test::RecordProperty(name, std::to_string(schedules + randomSchedules));
}

u32 tExplorer::choose(void* explorer, ntoshost::SchedulePoint const& point) {
  return static_cast<tExplorer*>(explorer)->choose(point);
}

unsigned tExplorer::countBefore() const {
  return steps.empty() ? 0 : steps.back().preemptions;
}

bool tExplorer::isPreemption(tStep const& step, unsigned choice) {
  bool const canOthers = (step.choices & ((1u << kMostScheduledThreads) - 1)) != 0;
  return choice >= kMostScheduledThreads ? canOthers : step.mayStay && choice != step.current;
}

// The thread itself, if it may stay; else the first that can go on.
unsigned tExplorer::choose(ntoshost::SchedulePoint const& point) {
  tStep step = {point.current, point.mayStay, point.choices, 0, 0};
  step.chosen = point.mayStay ? point.current : countTrailing(point.choices);
  if (steps.size() < prefix.size()) {
    step.chosen = prefix[steps.size()];
    if ((point.choices >> step.chosen & 1) == 0) {
      ADD_FAILURE() << name << " is another one each time";
      step.chosen = countTrailing(point.choices);
    }
  } else if (isRandom) {
    step.chosen = chooseAtRandom(point);
  }
  step.preemptions = countBefore() + (isPreemption(step, step.chosen) ? 1 : 0);
  steps.push_back(step);
  return step.chosen;
}

unsigned tExplorer::chooseAtRandom(ntoshost::SchedulePoint const& point) {
  random = random * 6364136223846793005u + 1442695040888963407u;
  unsigned const number = static_cast<unsigned>(random >> 33);
  if (point.mayStay && number % 100 >= kSwitchesInHundred) return point.current;
  unsigned choices = point.choices;
  unsigned skip = number / 100 % static_cast<unsigned>(__builtin_popcount(choices));
  for (; skip != 0; --skip) choices &= choices - 1;
  return countTrailing(choices);
}

// The next schedule in depth-first order, then those at random.
bool tExplorer::turnToNext() {
  if (!isRandom) {
    while (!steps.empty()) {
      if (turnLast()) return true;
      steps.pop_back();
    }
    isRandom = true;
    prefix.clear();
  }
  return randomSchedules < reach.random;
}

// Whether the last step has a choice that was not tried and is within reach; it is taken then. They
// are tried from the thread itself on, or from the lowest, upwards and around.
bool tExplorer::turnLast() {
  tStep const& last = steps.back();
  unsigned const before = steps.size() < 2 ? 0 : steps[steps.size() - 2].preemptions;
  unsigned const first = last.mayStay ? last.current : countTrailing(last.choices);
  constexpr unsigned kChoices = 2 * kMostScheduledThreads;
  for (unsigned choice = (last.chosen + 1) % kChoices; choice != first;
       choice = (choice + 1) % kChoices) {
    if ((last.choices >> choice & 1) == 0) continue;
    if (before + (isPreemption(last, choice) ? 1 : 0) > reach.preemptions) continue;
    prefix.clear();
    for (tStep const& step : steps) prefix.push_back(step.chosen);
    prefix.back() = choice;
    return true;
  }
  return false;
}

std::string tExplorer::describe() const {
  std::string text = name;
  for (size_t at = 0; at < steps.size();) {
    size_t end = at;
    while (end < steps.size() && steps[end].chosen == steps[at].chosen) ++end;
    text +=
        (at == 0 ? ":" : ",") + std::to_string(steps[at].chosen) + "*" + std::to_string(end - at);
    at = end;
  }
  return text;
}

// Also where the program ends: the schedule is what counts then, and memory is there.
void tExplorer::printCurrent() {
  if (current == nullptr) return;
  std::string const text = "OXDIAG_SCHEDULE=" + current->describe().substr(0, kMostText) + "\n";
  current = nullptr;
  if (write(STDERR_FILENO, text.data(), text.size()) < 0) return;
}
