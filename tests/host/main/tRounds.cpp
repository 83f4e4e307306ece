#include "tRounds.h"

#include <unistd.h>

#include <cstdio>
#include <ctime>
#include <unordered_map>
#include <vector>

#include "ntoshost/faults.h"
#include "tCallSites.h"
#include "tRound.h"
#include "tWorkers.h"

namespace {

constexpr u64 kMostPlaces = 4096;  // of a test

struct tCounts {
  u64 rounds;
  u64 injected;   // failed calls in all of them
  u64 unreached;  // rounds in which no call failed
  u64 findings;
};

// The fallible calls of a test that shall fail, one a round.
struct tTestPlaces {
  u64 done;
  u64 count;
  u64 calls[kMostPlaces];
};

void add(u64& counter, u64 amount) {
  __atomic_fetch_add(&counter, amount, __ATOMIC_RELAXED);
}

// In one piece, whichever process it is.
void tell(tCounts& counts, std::string const& what, std::string const& wrong) {
  add(counts.findings, 1);
  std::string const line = "FINDING " + what + "\n" + wrong;
  if (write(STDOUT_FILENO, line.data(), line.size()) < 0) _exit(1);
}

void count(tCounts& counts, tRoundResult const& result) {
  add(counts.rounds, 1);
  add(counts.injected, result.injected);
  if (result.injected == 0) add(counts.unreached, 1);
}

int conclude(tCounts const& counts) {
  std::printf("%llu rounds, %llu failed calls, %llu rounds without one, %llu findings\n",
              counts.rounds, counts.injected, counts.unreached, counts.findings);
  return counts.findings == 0 ? 0 : 1;
}

std::vector<std::string> testsOf(tCommand const& command) {
  return command.test.empty() ? listTests() : std::vector<std::string>{command.test};
}

// Runs each test without a failed call, to see which calls it makes.
void findPlaces(tCommand const& command, std::vector<std::string> const& tests, tTestPlaces* places,
                tCounts& counts) {
  std::unordered_map<std::string, u64> indexOf;
  for (u64 i = 0; i < tests.size(); ++i) indexOf[tests[i]] = i;
  std::vector<std::string> const filters = command.test.empty() ? listSuites() : tests;
  tCallSites sites(command.points);
  tRoundPlan const plan = {[&](std::string const& test) {
                             tTestPlaces& own = places[indexOf[test]];
                             own.count = 0;
                             sites.beginTest(static_cast<u32>(command.repeats), [&own](u64 number) {
                               if (own.count < kMostPlaces) own.calls[own.count++] = number;
                             });
                           },
                           [&](tRoundResult const& result) {
                             sites.endTest();
                             if (!result.hasPassed)
                               tell(counts, result.test + " fails by itself\n", "");
                             if (!result.wrong.empty()) tell(counts, result.test, result.wrong);
                           }};
  runEach(filters, plan, [&](std::string const& filter, std::string const& why) {
    tell(counts, filter + " died by itself: " + why, "");
  });
}

// Leaves so many rounds of all, at equal distances.
void thinOut(tTestPlaces* places, u64 testCount, u64 wanted) {
  u64 all = 0;
  for (u64 i = 0; i < testCount; ++i) all += places[i].count;
  if (wanted == 0 || wanted >= all) return;
  u64 number = 0;
  for (u64 i = 0; i < testCount; ++i) {
    tTestPlaces& own = places[i];
    u64 const before = own.count;
    own.count = 0;
    for (u64 place = 0; place < before; ++place, ++number) {
      bool const isTaken = (number + 1) * wanted / all != number * wanted / all;
      if (isTaken) own.calls[own.count++] = own.calls[place];
    }
  }
}

void failPlaces(std::vector<std::string> const& tests, tTestPlaces* places, tCounts& counts) {
  auto const nameOf = [&](u64 i) {
    return "--test " + tests[i] + " --call " + std::to_string(places[i].calls[places[i].done]);
  };
  auto const failOf = [&](u64 i) {
    tTestPlaces& own = places[i];
    tRoundPlan const plan = {[&](std::string const&) {
                               tWorkers::beginRound();
                               ntoshost::failNth(own.calls[own.done]);
                             },
                             [&](tRoundResult const& result) {
                               count(counts, result);
                               if (!result.wrong.empty()) tell(counts, nameOf(i), result.wrong);
                               ++own.done;
                             }};
    if (own.done < own.count) runRounds(tests[i], static_cast<int>(own.count - own.done), plan);
    return true;
  };
  tWorkers::run(tests.size(), failOf, [&](u64 i, std::string const& why) {
    tell(counts, nameOf(i) + " died: " + why, "");
    return ++places[i].done < places[i].count;
  });
}

// Few, some, many: a test meets another state with each.
constexpr u32 kChances[] = {50, 200, 600, 2000, 5000};

void failBySeed(std::vector<std::string> const& tests, u64 seed, tCounts& counts) {
  u64 const number = seed * 0x9E3779B97F4A7C15 >> 16;
  u32 const chance = kChances[number / tests.size() % 5];
  tRoundPlan const plan = {
      [&](std::string const&) {
        tWorkers::beginRound();
        ntoshost::failRandomly(ntoshost::kFaultAll, chance, seed);
      },
      [&](tRoundResult const& result) {
        count(counts, result);
        if (result.wrong.empty()) return;
        tell(counts, "--fail-randomly 0 --seed " + std::to_string(seed) + " " + result.test,
             result.wrong);
      }};
  runRounds(tests[number % tests.size()], 1, plan);
}

}  // namespace

int failEachCall(tCommand const& command) {
  tCounts& counts = *tWorkers::share<tCounts>();
  std::vector<std::string> const tests = testsOf(command);
  tTestPlaces* const places = tWorkers::share<tTestPlaces>(tests.size());
  if (command.call == 0) {
    findPlaces(command, tests, places, counts);
  } else {
    places[0] = {0, 1, {command.call}};
  }
  thinOut(places, tests.size(), command.rounds);
  failPlaces(tests, places, counts);
  return conclude(counts);
}

int failRandomly(tCommand const& command) {
  constexpr u64 kEndless = ~u64{0} - 1;
  tCounts& counts = *tWorkers::share<tCounts>();
  std::vector<std::string> const tests = listTests();
  time_t const start = time(nullptr);
  u64 const first = command.seed != 0 ? command.seed : static_cast<u64>(start) * 1'000'000;
  std::printf("seeds from %llu on\n", first);
  tWorkers::run(
      command.seconds == 0 ? 1 : kEndless,
      [&](u64 i) {
        bool const isLate =
            command.seconds != 0 && time(nullptr) - start >= static_cast<time_t>(command.seconds);
        if (!isLate) failBySeed(tests, first + i, counts);
        return !isLate;
      },
      [&](u64 i, std::string const& why) {
        tell(counts, "--fail-randomly 0 --seed " + std::to_string(first + i) + " died: " + why, "");
        return false;
      });
  return conclude(counts);
}
