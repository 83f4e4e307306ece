// Contracts checked on several threads while another sets their switches.

#include <atomic>
#include <thread>
#include <vector>

#define OXDIAG_COMPONENT "threads"
#define OXDIAG_COMPONENT_VERSION tSSVersion()

#include "oxdiagk/contractMacros.h"
#include "oxdiagk/tAssertConfiguration.h"
#include "trace/startedModules.h"

namespace {

using nOXDIAG100::tAssertConfiguration;

constexpr int kCheckers = 3;
constexpr int kFlips = 500;

}  // namespace

TEST(CheckThreads, SwitchesMayBeSetWhileContractsAreChecked) {
  tAssertConfiguration& contracts = tAssertConfiguration::getInstance();
  std::atomic<bool> isOver = false;
  std::atomic<u64> evaluations = 0;
  std::vector<std::thread> checkers;
  for (int index = 0; index < kCheckers; ++index) {
    checkers.emplace_back([&] {
      while (!isOver) OXDIAG_REQUIRE(++evaluations != 0);
    });
  }
  for (int flip = 0; flip < kFlips; ++flip) {
    contracts.disablePreconditions("default");
    contracts.configure("--preconditions on");
    contracts.pushConfiguration();
    contracts.popConfiguration();
  }
  while (evaluations == 0) std::this_thread::yield();
  isOver = true;
  for (std::thread& checker : checkers) checker.join();
  EXPECT_TRUE(contracts.preconditionsAreEnabled("default"));
}
