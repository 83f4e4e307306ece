#pragma once

// Runs a model under many schedules, see ntoshost/schedule.h: every one with no more than so many
// preemptions, and some at random. A preemption is a switch from a thread that could have gone on,
// or a wait that runs out of time while other threads can go on.
//
// A model is a class with kThreads, a constructor that prepares, run(thread), which the threads
// call, and finish(), which says with expectations what must be so behind every schedule.
//
//     class tTwoCounters { ... };
//     TEST(CounterSchedules, NothingIsLost) { explore<tTwoCounters>("counters", {2, 1000}); }
//
// A schedule that fails is printed. OXDIAG_SCHEDULE=counters:0*12,1*3 runs that one alone.

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "ntoshost/schedule.h"

// The preset host-rounds goes one preemption further, and has thirty times as many at random.
struct tReach {
  static constexpr unsigned kExhaustive = 1000;  // there, and three preemptions elsewhere
  static constexpr unsigned kRandomOnly = 999;

  unsigned preemptions;
  unsigned random;
};

class tExplorer {
 public:
  tExplorer(std::string name, tReach reach);
  tExplorer(tExplorer const&) = delete;
  tExplorer& operator=(tExplorer const&) = delete;

  // Whether there is one more schedule to run.
  bool begin();

  // Runs the threads under it.
  void run(unsigned threads, std::function<void(unsigned)> const& body);

  // Whether this one is one of those that are reported: the first forty, at random, only make
  // what is made once.
  bool isCounted() const { return warmUps == 0; }

  // Behind it and behind what the model expects of it.
  void end();

  // How many schedules there were is printed, and a property of the test.
  void report() const;

 private:
  // One choice of the schedule, and what could have been chosen.
  struct tStep {
    unsigned current;
    bool mayStay;
    unsigned choices;
    unsigned chosen;
    unsigned preemptions;  // this one included
  };

  static u32 choose(void* explorer, ntoshost::SchedulePoint const& point);
  unsigned choose(ntoshost::SchedulePoint const& point);
  unsigned chooseAtRandom(ntoshost::SchedulePoint const& point);
  unsigned countBefore() const;
  static bool isPreemption(tStep const& step, unsigned choice);
  void endWarmUp();
  bool turnToNext();
  bool turnLast();
  std::string describe() const;
  void readReplay();
  static void printCurrent();

  std::string const name;
  tReach const reach;
  std::vector<tStep> steps;
  std::vector<unsigned> prefix;  // choices that the schedule begins with
  unsigned long long schedules = 0;
  unsigned long long randomSchedules = 0;
  unsigned long long mostPoints = 0;
  unsigned long long random = 1;  // state of the numbers
  unsigned warmUps = 0;           // schedules at random that are not counted
  bool isRandom = true;
  bool isReplay = false;
  bool isOver = false;

  static tExplorer* current;
};

template <class Model>
void explore(std::string const& name, tReach reach) {
  tExplorer explorer(name, reach);
  while (explorer.begin()) {
    Model model;
    explorer.run(Model::kThreads, [&](unsigned thread) { model.run(thread); });
    model.finish();
    explorer.end();
  }
  explorer.report();
}
