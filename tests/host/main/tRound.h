#pragma once

#include <functional>
#include <string>
#include <vector>

#include "ntos/irql.h"

// Tests, each in a life of the modules of its own.

struct tRoundResult {
  std::string test;   // Suite.Name
  bool hasPassed;     // what a test of failed calls expects is of no account
  u64 injected;       // calls of the test and its fixture that failed
  std::string wrong;  // see tModules::stop
};

// What happens around each round.
struct tRoundPlan {
  std::function<void(std::string const& test)> arm;  // before the fixture is made
  std::function<void(tRoundResult const& result)> judge;
  KIRQL level = PASSIVE_LEVEL;  // of test and fixture
};

// The names of all tests, and of their suites with ".*" behind.
std::vector<std::string> listTests();
std::vector<std::string> listSuites();

// Runs the tests that the filter names one after the other, all of them so many times.
void runRounds(std::string const& filter, int times, tRoundPlan const& plan);

// The tests of each filter once, by workers: `died` hears of a filter whose tests ended their
// process, and of what that had printed.
void runEach(std::vector<std::string> const& filters, tRoundPlan const& plan,
             std::function<void(std::string const& filter, std::string const& why)> const& died);
