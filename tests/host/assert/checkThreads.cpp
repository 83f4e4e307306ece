// Contracts checked on several threads while others set their switches and make categories.

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#define OXDIAG_COMPONENT "threads"
#define OXDIAG_COMPONENT_VERSION tSSVersion()

#include "oxdiagk/contractMacros.h"
#include "oxdiagk/tAssertConfiguration.h"
#include "support/assertSwitches.h"
#include "trace/startedModules.h"

namespace {

using nOXDIAG100::tAssertConfiguration;

constexpr int kCheckers = 3;
constexpr int kFlips = 500;
constexpr int kMakers = 2;
constexpr u32 kMade = 300;  // categories of each maker

std::string nameOf(u32 index) {
  return "threads." + std::to_string(index);
}

// Looks all categories up again and again: one that was found once is there, with all its switches
// as they are in every new category.
class tFinder {
 public:
  explicit tFinder(tPrivateContracts const& contracts) : contracts(contracts) {
    for (u32 index = 0; index < kMakers * kMade; ++index) names.push_back(nameOf(index));
  }

  void lookAtAll() {
    for (u32 index = 0; index < names.size(); ++index) {
      u32 const switches = switchesOf(contracts, names[index].c_str());
      bool const isThere = contracts.checksAreEnabled(names[index].c_str());
      EXPECT_TRUE(isThere || !wasFound[index]) << names[index] << " was lost";
      EXPECT_TRUE(switches == kSwitchesOfANewCategory || !wasFound[index]) << names[index];
      wasFound[index] = isThere;
    }
  }

 private:
  tPrivateContracts const& contracts;
  std::vector<std::string> names;
  std::vector<bool> wasFound = std::vector<bool>(kMakers * kMade);
};

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

TEST(CheckThreads, CategoriesMayBeMadeAndRestoredWhileContractsAreChecked) {
  tPrivateContracts contracts;
  std::atomic<int> makersLeft = kMakers;
  std::vector<std::thread> threads;
  for (u32 maker = 0; maker < kMakers; ++maker) {
    threads.emplace_back([&, maker] {
      for (u32 index = 0; index < kMade; ++index) {
        configureWords(contracts, "--category", nameOf(index * kMakers + maker).c_str());
        if (index % 32 == 0) contracts.pushConfiguration();
        if (index % 64 == 0) contracts.popConfiguration();
      }
      --makersLeft;
    });
  }
  for (int index = 0; index < kCheckers; ++index) {
    threads.emplace_back([&] {
      tFinder finder(contracts);
      while (makersLeft != 0) finder.lookAtAll();
      finder.lookAtAll();
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (u32 index = 0; index < kMakers * kMade; ++index) {
    EXPECT_EQ(switchesOf(contracts, nameOf(index).c_str()), kSwitchesOfANewCategory);
  }
}

// Contracts at one place each, in a category that is made while they are checked.
TEST(CheckThreads, AContractMayFindItsCategoryOnSeveralThreadsAtOnce) {
  tAssertConfiguration& contracts = tAssertConfiguration::getInstance();
  std::atomic<int> left = kCheckers;
  std::vector<std::thread> checkers;
  for (int index = 0; index < kCheckers; ++index) {
    checkers.emplace_back([&] {
      bool isEvaluated = false;
      while (!isEvaluated) OXDIAG_CHECK_IN("threads.made", (isEvaluated = true), "text");
      --left;
      while (isEvaluated) {
        isEvaluated = false;
        OXDIAG_CHECK_IN("threads.made", (isEvaluated = true), "text");
      }
    });
  }
  configureWords(contracts, "--category", "threads.made", "--break", "off");
  while (left != 0) std::this_thread::yield();
  contracts.disableChecks("threads.made");
  for (std::thread& checker : checkers) checker.join();
  contracts.configure("--category default");
}
