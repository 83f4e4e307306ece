// The assertion configuration when memory is exhausted: the first, the second, the third ...
// allocation of each operation fails, and each time what was set before stands.

#include <new>
#include <string>

#include "support/assertSwitches.h"
#include "trace/startedModules.h"

namespace {

constexpr u32 kNew = kSwitchesOfANewCategory;

std::string inquiredText(nOXDIAG100::tAssertConfiguration& contracts) {
  unsigned int needed = 0;
  contracts.inquire(nullptr, 0, &needed);
  std::string text(needed, '#');
  contracts.inquire(text.data(), needed, nullptr);
  text.pop_back();
  return text;
}

// Runs `operation` with each of its allocations failing in turn, and demands that nothing leaks.
template <class Operation>
u64 failEachAllocation(Operation operation) {
  u64 const before = ntoshost::outstandingBlocks();
  return ntoshost::failEachCall(ntoshost::kFaultMemory, [&](u64 n) {
    operation(n);
    EXPECT_EQ(ntoshost::outstandingBlocks(), before) << "allocation " << n;
  });
}

}  // namespace

TEST(AssertFaults, ACategoryThatCannotBeBuiltIsMissingAndTheOthersAreThere) {
  constexpr char const* kOrder[] = {"default", "warning", "statusWarning", "statusFatal"};
  u64 const failures = failEachAllocation([&](u64 n) {
    tPrivateContracts const contracts;
    for (u64 index = 0; index < 4; ++index) {
      u32 const switches = switchesOf(contracts, kOrder[index]);
      EXPECT_EQ(switches == 0, index + 1 == n) << kOrder[index];
    }
  });
  EXPECT_EQ(failures, 4u);
}

TEST(AssertFaults, WithoutAnyCategoryNothingIsCheckedAndNothingIsInquired) {
  ntoshost::failFrom(ntoshost::kFaultMemory, 1);
  tPrivateContracts contracts;
  ntoshost::clearFaults();
  EXPECT_EQ(switchesOf(contracts, "default"), 0u);
  EXPECT_EQ(inquiredText(contracts), "");
  configureWords(contracts, "--checks", "on");
  EXPECT_EQ(switchesOf(contracts, "default"), 0u);
  contracts.pushConfiguration();
  contracts.popConfiguration();
  EXPECT_EQ(inquiredText(contracts), "");
}

// The switch words find no current category, so the words behind them are read as options.
TEST(AssertFaults, SwitchesOfACurrentCategoryThatIsMissingAreIgnored) {
  ntoshost::failNth(ntoshost::kFaultMemory, 1);
  tPrivateContracts contracts;
  ntoshost::clearFaults();
  std::string const before = inquiredText(contracts);
  configureWords(contracts, "--checks", "off", "--break", "--terminate");
  EXPECT_EQ(inquiredText(contracts), before);
}

TEST(AssertFaults, ABuiltInCategoryThatIsMissingCanBeMadeAndIsFreed) {
  u64 const before = ntoshost::outstandingBlocks();
  {
    ntoshost::failNth(ntoshost::kFaultMemory, 1);
    tPrivateContracts contracts;
    ntoshost::clearFaults();
    configureWords(contracts, "--category", "default", "--checks", "off");
    EXPECT_EQ(switchesOf(contracts, "default"), kNew & ~kSwitchChecks);
  }
  EXPECT_EQ(ntoshost::outstandingBlocks(), before);
}

TEST(AssertFaults, ACategoryThatCannotBeMadeLeavesTheCurrentOne) {
  for (u64 n = 1; n <= 2; ++n) {  // the copy of the name, the place in the table
    tPrivateContracts contracts;
    configureWords(contracts, "--category", "warning");
    std::string const before = inquiredText(contracts);
    u64 const blocks = ntoshost::outstandingBlocks();
    ntoshost::failNth(ntoshost::kFaultMemory, n);
    configureWords(contracts, "--category", "rack");
    ntoshost::clearFaults();
    EXPECT_EQ(ntoshost::faultsInjected(), 1u);
    EXPECT_EQ(inquiredText(contracts), before);
    EXPECT_EQ(ntoshost::outstandingBlocks(), blocks);
    configureWords(contracts, "--checks", "off");
    EXPECT_FALSE(contracts.checksAreEnabled("warning"));
    EXPECT_TRUE(contracts.checksAreEnabled("default"));
  }
}

TEST(AssertFaults, SwitchesOfACategoryThatCannotBeMadeChangeNothing) {
  for (u64 n = 1; n <= 2; ++n) {
    tPrivateContracts contracts;
    std::string const before = inquiredText(contracts);
    ntoshost::failNth(ntoshost::kFaultMemory, n);
    configureWords(contracts, "--category", "rack", "--checks", "off", "--break");
    ntoshost::clearFaults();
    EXPECT_EQ(inquiredText(contracts), before);
    configureWords(contracts, "--checks", "off");
    EXPECT_FALSE(contracts.checksAreEnabled("default"));
  }
}

TEST(AssertFaults, ACategoryCanBeMadeAfterAFailure) {
  tPrivateContracts contracts;
  ntoshost::failFrom(ntoshost::kFaultMemory, 1);
  configureWords(contracts, "--category", "rack");
  ntoshost::clearFaults();
  configureWords(contracts, "--category", "rack", "--checks", "off");
  EXPECT_EQ(switchesOf(contracts, "rack"), kNew & ~kSwitchChecks);
}

TEST(AssertFaults, KnownCategoriesAndSwitchesNeedNoMemory) {
  tPrivateContracts contracts;
  ntoshost::watchCalls(ntoshost::kFaultMemory);
  configureWords(contracts, "--category", "warning", "--checks", "off", "--break");
  EXPECT_EQ(ntoshost::fallibleCallsSeen(), 0u);
}

TEST(AssertFaults, ATextWhoseWordsCannotBeAllocatedChangesNothing) {
  tPrivateContracts contracts;
  std::string const before = inquiredText(contracts);
  ntoshost::failNth(ntoshost::kFaultMemory, 1);
  contracts.configure("--category warning --checks off");
  ntoshost::clearFaults();
  EXPECT_EQ(ntoshost::faultsInjected(), 1u);
  EXPECT_EQ(inquiredText(contracts), before);
}

TEST(AssertFaults, ConfiguringLeaksNothingWhateverAllocationFails) {
  u64 const failures = failEachAllocation([](u64) {
    tPrivateContracts contracts;
    contracts.configure("--category rack --checks off --category disk --category rack --break off");
  });
  EXPECT_EQ(failures, 4u + 1u + 4u);
}

TEST(AssertFaults, AFailedPushSavesNothingAndKeepsWhatIsSaved) {
  tPrivateContracts contracts;
  contracts.disableChecks("default");
  contracts.pushConfiguration();
  contracts.enableChecks("default");
  for (u64 n = 1; n <= 2; ++n) {  // the growth of the stack, the text
    u64 const blocks = ntoshost::outstandingBlocks();
    ntoshost::failNth(ntoshost::kFaultMemory, n);
    contracts.pushConfiguration();
    ntoshost::clearFaults();
    EXPECT_EQ(ntoshost::faultsInjected(), 1u) << "allocation " << n;
    EXPECT_EQ(ntoshost::outstandingBlocks(), blocks);
  }
  contracts.popConfiguration();
  EXPECT_FALSE(contracts.checksAreEnabled("default"));
  contracts.enableChecks("default");
  contracts.popConfiguration();
  EXPECT_TRUE(contracts.checksAreEnabled("default"));
}

TEST(AssertFaults, APushWorksAgainAfterAFailedOne) {
  tPrivateContracts contracts;
  ntoshost::failFrom(ntoshost::kFaultMemory, 1);
  contracts.pushConfiguration();
  ntoshost::clearFaults();
  contracts.pushConfiguration();
  contracts.disableChecks("default");
  contracts.popConfiguration();
  EXPECT_TRUE(contracts.checksAreEnabled("default"));
}

TEST(AssertFaults, StackGrowsByDoubling) {
  tPrivateContracts contracts;
  u64 growths = 0;
  for (int push = 0; push < 33; ++push) {
    ntoshost::watchCalls(ntoshost::kFaultMemory);
    contracts.pushConfiguration();
    growths += ntoshost::fallibleCallsSeen() - 1;
  }
  EXPECT_EQ(growths, 7u);  // to 1, 2, 4, 8, 16, 32, 64
}

TEST(AssertFaults, AFailedPopFreesTheTextAndLeavesEverythingElseAlone) {
  tPrivateContracts contracts;
  configureWords(contracts, "--category", "warning");
  contracts.pushConfiguration();
  u64 const blocks = ntoshost::outstandingBlocks();
  configureWords(contracts, "--category", "default", "--checks", "off");
  ntoshost::failNth(ntoshost::kFaultMemory, 1);
  contracts.popConfiguration();
  ntoshost::clearFaults();
  EXPECT_EQ(ntoshost::faultsInjected(), 1u);
  EXPECT_FALSE(contracts.checksAreEnabled("default"));
  EXPECT_EQ(ntoshost::outstandingBlocks(), blocks - 1);
  configureWords(contracts, "--preconditions", "off");
  EXPECT_FALSE(contracts.preconditionsAreEnabled("default"));
}

TEST(AssertFaults, DestructionRestoresTheOldestSavedConfiguration) {
  alignas(tPrivateContracts) static u8 storage[sizeof(tPrivateContracts)];
  auto* const contracts = new (storage) tPrivateContracts;
  configureWords(*contracts, "--category", "rack");
  contracts->pushConfiguration();
  configureWords(*contracts, "--category", "disk");
  contracts->pushConfiguration();
  ntoshost::watchCalls(ntoshost::kFaultMemory);
  contracts->~tPrivateContracts();
  // One allocation for the words of its text, and two for the one category that it makes again,
  // since the categories are freed before.
  EXPECT_EQ(ntoshost::fallibleCallsSeen(), 1u + 2u);
}

TEST(AssertFaults, DestructionLeaksNothingWhateverAllocationFails) {
  u64 const before = ntoshost::outstandingBlocks();
  u64 failures = 0;
  for (u64 n = 1;; ++n) {
    {
      tPrivateContracts contracts;
      contracts.configure("--category rack --category disk");
      contracts.pushConfiguration();
      configureWords(contracts, "--category", "bus");
      contracts.pushConfiguration();
      contracts.pushConfiguration();
      ntoshost::failNth(ntoshost::kFaultMemory, n);
    }
    ntoshost::clearFaults();
    EXPECT_EQ(ntoshost::outstandingBlocks(), before) << "allocation " << n;
    if (ntoshost::faultsInjected() == 0) break;
    ++failures;
  }
  EXPECT_EQ(failures, 1u + 2u * 2u);
}

TEST(AssertFaults, DestructionOfAStackedOneSurvivesExhaustedMemory) {
  u64 const before = ntoshost::outstandingBlocks();
  {
    tPrivateContracts contracts;
    configureWords(contracts, "--category", "rack");
    for (int push = 0; push < 5; ++push) contracts.pushConfiguration();
    ntoshost::failFrom(ntoshost::kFaultMemory, 1);
  }
  ntoshost::clearFaults();
  EXPECT_EQ(ntoshost::outstandingBlocks(), before);
}

TEST(AssertFaults, NothingIsCheckedOutsideTheLifeOfTheModulesObject) {
  using nOXDIAG100::tAssertConfiguration;
  tAssertConfiguration::destroyInstance();
  EXPECT_EQ(switchesOf(tAssertConfiguration::getInstance(), "default"), 0u);
  tAssertConfiguration::getInstance().enableChecks("default");
  EXPECT_EQ(switchesOf(tAssertConfiguration::getInstance(), "default"), 0u);
  tAssertConfiguration::constructInstance();
  EXPECT_EQ(switchesOf(tAssertConfiguration::getInstance(), "default"), kNew);
}
