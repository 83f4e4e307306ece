// What a contract costs that holds: with every switch of every category off, and with all on. The
// floor looks its category up in a sorted array of the same four names and tests a flag. Beside it
// is the test of one flag in memory, without any category. A contract that does not hold costs a
// trace line, which is measured elsewhere.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>

#define OXDIAG_COMPONENT "slotbus"
#define OXDIAG_COMPONENT_VERSION tSSVersion(1, 0, 0, tSSVersion::kPhaseReleased, 1, 0)

#include "oxdiagk/contractMacros.h"
#include "oxdiagk/tAssertConfiguration.h"

namespace {

using nOXDIAG100::tAssertConfiguration;

struct tFloorCategory {
  char const* name;
  bool switches[8];
};

constexpr u32 kFloorKind = 2;
tFloorCategory floorCategories[] = {
    {"default", {}}, {"statusFatal", {}}, {"statusWarning", {}}, {"warning", {}}};

// Out of line, as ours is: a component calls it in another module.
[[gnu::noinline]] bool isCheckedByFloor(char const* category) {
  u32 begin = 0;
  u32 end = 4;
  while (begin != end) {
    u32 const middle = (begin + end) / 2;
    int const order = std::strcmp(category, floorCategories[middle].name);
    if (order == 0) return floorCategories[middle].switches[kFloorKind];
    if (order < 0) {
      end = middle;
    } else {
      begin = middle + 1;
    }
  }
  return false;
}

[[gnu::noinline]] void failFloor() {
  std::abort();
}

void setSwitches(tAssertConfiguration& ours, bool isOn) {
  char value[] = "off";
  if (isOn) std::strcpy(value, "on");
  for (tFloorCategory& category : floorCategories) {
    char* name[] = {const_cast<char*>("--category"), const_cast<char*>(category.name)};
    ours.configure(2, name);
    for (char const* word : {"--terminate", "--break", "--preconditions", "--postconditions",
                             "--classinvariants", "--loopinvariants", "--checks", "--exceptions"}) {
      char* words[] = {const_cast<char*>(word), value};
      ours.configure(2, words);
    }
    for (bool& flag : category.switches) flag = isOn;
  }
}

// Runs `checkOnce(slot, evaluations)` and demands that the condition was evaluated as it should.
template <class tCheckOnce>
void runChecks(benchmark::State& state, bool isOn, tCheckOnce checkOnce) {
  tAssertConfiguration& ours = tAssertConfiguration::getInstance();
  ours.pushConfiguration();
  setSwitches(ours, isOn);
  u32 slot = 3;
  u64 evaluations = 0;
  for ([[maybe_unused]] auto run : state) {
    benchmark::DoNotOptimize(slot);
    checkOnce(slot, evaluations);
    benchmark::ClobberMemory();
  }
  ours.popConfiguration();
  u64 const wanted = isOn ? static_cast<u64>(state.iterations()) : 0;
  if (evaluations != wanted) state.SkipWithError("conditions went astray");
}

void runOurs(benchmark::State& state, bool isOn) {
  runChecks(state, isOn,
            [](u32 slot, u64& evaluations) { OXDIAG_REQUIRE((++evaluations, slot < 17)); });
}

void runFloor(benchmark::State& state, bool isOn) {
  runChecks(state, isOn, [](u32 slot, u64& evaluations) {
    char const* category = "default";
    benchmark::DoNotOptimize(category);
    if (isCheckedByFloor(category) && !(++evaluations, slot < 17)) failFloor();
  });
}

void runFlag(benchmark::State& state, bool isOn) {
  static bool isChecked = false;
  isChecked = isOn;
  runChecks(state, isOn, [](u32 slot, u64& evaluations) {
    benchmark::DoNotOptimize(isChecked);
    if (isChecked && !(++evaluations, slot < 17)) failFloor();
  });
}

BENCHMARK_CAPTURE(runOurs, off, false)->Name("contract check off/ours");
BENCHMARK_CAPTURE(runFloor, off, false)->Name("contract check off/floor");
BENCHMARK_CAPTURE(runFlag, off, false)->Name("contract check off/flag");
BENCHMARK_CAPTURE(runOurs, on, true)->Name("contract check on/ours");
BENCHMARK_CAPTURE(runFloor, on, true)->Name("contract check on/floor");
BENCHMARK_CAPTURE(runFlag, on, true)->Name("contract check on/flag");

}  // namespace
