// Saving and restoring the assertion configuration.

#include "conformance/harness.h"
#include "support/assertSwitches.h"
#include "support/tTexts.h"

namespace {}  // namespace

TEST(AssertStack, PopOfAnEmptyStackChangesNothing) {
  tPrivateContracts contracts;
  contracts.configure("--category warning --checks off");
  tContractsText const before(contracts, 0);
  contracts.popConfiguration();
  tContractsText const after(contracts, 1);
  EXPECT_STREQ(before.text, after.text);
  configureWords(contracts, "--break");
  EXPECT_TRUE(contracts.breakOnViolationIsEnabled("warning"));
}

TEST(AssertStack, PushChangesNothing) {
  tPrivateContracts contracts;
  contracts.configure("--category warning --checks off");
  tContractsText const before(contracts, 0);
  contracts.pushConfiguration();
  tContractsText const after(contracts, 1);
  EXPECT_STREQ(before.text, after.text);
  configureWords(contracts, "--break");
  EXPECT_TRUE(contracts.breakOnViolationIsEnabled("warning"));
}

TEST(AssertStack, PopRestoresASwitch) {
  tPrivateContracts contracts;
  contracts.pushConfiguration();
  configureWords(contracts, "--category", "default", "--break", "off");
  EXPECT_FALSE(contracts.breakOnViolationIsEnabled("default"));
  contracts.popConfiguration();
  EXPECT_TRUE(contracts.breakOnViolationIsEnabled("default"));
}

TEST(AssertStack, PopRestoresEverySwitchOfEveryCategory) {
  tPrivateContracts contracts;
  contracts.configure("--category rack --checks off");
  contracts.pushConfiguration();
  tContractsText const before(contracts, 0);
  for (char const* category :
       tTexts{"default", "statusFatal", "statusWarning", "warning", "rack"}) {
    for (tTestSwitch const& entry : kTestSwitches) {
      if (entry.isOn(contracts, category)) {
        entry.disable(contracts, category);
      } else {
        entry.enable(contracts, category);
      }
    }
  }
  EXPECT_EQ(switchesOf(contracts, "rack"), kSwitchTerminate | kSwitchChecks);
  contracts.popConfiguration();
  tContractsText const after(contracts, 1);
  EXPECT_STREQ(before.text, after.text);
}

TEST(AssertStack, PopRestoresTheCurrentCategory) {
  tPrivateContracts contracts;
  configureWords(contracts, "--category", "statusFatal");
  contracts.pushConfiguration();
  configureWords(contracts, "--category", "warning");
  contracts.popConfiguration();
  configureWords(contracts, "--checks", "off");
  EXPECT_FALSE(contracts.checksAreEnabled("statusFatal"));
  EXPECT_TRUE(contracts.checksAreEnabled("warning"));
}

TEST(AssertStack, PopRestoresACurrentCategoryThatOptionsMade) {
  tPrivateContracts contracts;
  configureWords(contracts, "--category", "rack");
  contracts.pushConfiguration();
  configureWords(contracts, "--category", "default");
  contracts.popConfiguration();
  configureWords(contracts, "--checks", "off");
  EXPECT_EQ(switchesOf(contracts, "rack"), kSwitchesOfANewCategory & ~kSwitchChecks);
  EXPECT_EQ(switchesOf(contracts, "default"), kSwitchesOfANewCategory);
}

TEST(AssertStack, CategoriesMadeAfterThePushStayAsTheyAre) {
  tPrivateContracts contracts;
  contracts.pushConfiguration();
  configureWords(contracts, "--category", "rack", "--checks", "off");
  contracts.popConfiguration();
  EXPECT_EQ(switchesOf(contracts, "rack"), kSwitchesOfANewCategory & ~kSwitchChecks);
}

TEST(AssertStack, LastPushedIsPoppedFirst) {
  tPrivateContracts contracts;
  for (u32 index = 0; index < kTestSwitchCount; ++index) {
    contracts.pushConfiguration();
    kTestSwitches[index].disable(contracts, "default");
  }
  EXPECT_EQ(switchesOf(contracts, "default"), u32{0});
  for (u32 count = kTestSwitchCount; count != 0; --count) {
    contracts.popConfiguration();
    u32 const restored = ~((1u << (count - 1)) - 1);
    EXPECT_EQ(switchesOf(contracts, "default"), kSwitchesOfANewCategory & restored);
  }
}

TEST(AssertStack, APoppedConfigurationIsForgotten) {
  tPrivateContracts contracts;
  contracts.pushConfiguration();
  contracts.popConfiguration();
  contracts.disableChecks("default");
  contracts.popConfiguration();
  EXPECT_FALSE(contracts.checksAreEnabled("default"));
}

TEST(AssertStack, ItIsDeep) {
  tPrivateContracts contracts;
  constexpr u32 kDepth = 100;
  for (u32 push = 0; push < kDepth; ++push) {
    configureWords(contracts, "--checks", push % 2 == 0 ? "on" : "off");
    contracts.pushConfiguration();
  }
  for (u32 pop = kDepth; pop != 0; --pop) {
    contracts.popConfiguration();
    EXPECT_EQ(contracts.checksAreEnabled("default"), (pop - 1) % 2 == 0);
  }
}

// A name with a blank is saved as two words, of which only the first is the name.
TEST(AssertStack, ACategoryWhoseNameHasABlankIsNotRestored) {
  tPrivateContracts contracts;
  configureWords(contracts, "--category", "my rack", "--checks", "off");
  contracts.pushConfiguration();
  contracts.enableChecks("my rack");
  contracts.popConfiguration();
  EXPECT_EQ(switchesOf(contracts, "my rack"), kSwitchesOfANewCategory);
  EXPECT_EQ(switchesOf(contracts, "my"), kSwitchesOfANewCategory & ~kSwitchChecks);
  EXPECT_EQ(switchesOf(contracts, "default"), kSwitchesOfANewCategory);
}
