// The categories of contracts and their switches.

#include "oxdiagk/tAssertConfiguration.h"

#include "conformance/harness.h"
#include "support/assertSwitches.h"
#include "support/tTexts.h"

using nOXDIAG100::tAssertConfiguration;

namespace {

constexpr u32 kBuiltInCount = 4;

// In the order of kBuiltInNames.
constexpr u32 kBuiltInSwitches[kBuiltInCount] = {
    kSwitchesOfANewCategory,
    kSwitchesOfANewCategory & ~kSwitchExceptions,
    kSwitchesOfANewCategory & ~kSwitchExceptions,
    kSwitchesOfANewCategory & ~kSwitchBreak,
};

bool hasBuiltInSwitches(tAssertConfiguration const& contracts) {
  for (u32 index = 0; index < kBuiltInCount; ++index) {
    if (switchesOf(contracts, kBuiltInNames[index]) != kBuiltInSwitches[index]) return false;
  }
  return true;
}

}  // namespace

TEST(AssertConfiguration, AFreshOneHasTheBuiltInCategories) {
  tPrivateContracts const contracts;
  EXPECT_EQ(switchesOf(contracts, "default"), u32{0xFE});
  EXPECT_EQ(switchesOf(contracts, "warning"), u32{0xFC});
  EXPECT_EQ(switchesOf(contracts, "statusWarning"), u32{0x7E});
  EXPECT_EQ(switchesOf(contracts, "statusFatal"), u32{0x7E});
}

TEST(AssertConfiguration, SwitchesOfNewElementAreOnExceptTerminate) {
  tAssertConfiguration::tConfigElem const element;
  EXPECT_FALSE(element.terminateEnabled);
  EXPECT_TRUE(element.breakEnabled);
  EXPECT_TRUE(element.preconditionsEnabled);
  EXPECT_TRUE(element.postconditionsEnabled);
  EXPECT_TRUE(element.classinvariantsEnabled);
  EXPECT_TRUE(element.loopinvariantsEnabled);
  EXPECT_TRUE(element.checksEnabled);
  EXPECT_TRUE(element.exceptionsEnabled);
}

TEST(AssertConfiguration, FieldsOfAnElementAreInTheOrderOfTheSwitches) {
  using tElement = tAssertConfiguration::tConfigElem;
  EXPECT_EQ(size_t{8}, sizeof(tElement));
  EXPECT_EQ(size_t{0}, __builtin_offsetof(tElement, terminateEnabled));
  EXPECT_EQ(size_t{1}, __builtin_offsetof(tElement, breakEnabled));
  EXPECT_EQ(size_t{2}, __builtin_offsetof(tElement, preconditionsEnabled));
  EXPECT_EQ(size_t{3}, __builtin_offsetof(tElement, postconditionsEnabled));
  EXPECT_EQ(size_t{4}, __builtin_offsetof(tElement, classinvariantsEnabled));
  EXPECT_EQ(size_t{5}, __builtin_offsetof(tElement, loopinvariantsEnabled));
  EXPECT_EQ(size_t{6}, __builtin_offsetof(tElement, checksEnabled));
  EXPECT_EQ(size_t{7}, __builtin_offsetof(tElement, exceptionsEnabled));
}

TEST(AssertConfiguration, EachAccessorSetsOneSwitchOfOneCategoryInEitherState) {
  for (u32 category = 0; category < kBuiltInCount; ++category) {
    for (u32 index = 0; index < kTestSwitchCount; ++index) {
      tPrivateContracts contracts;
      char const* const name = kBuiltInNames[category];
      for (u32 other = 0; other < kTestSwitchCount; ++other) {
        kTestSwitches[other].disable(contracts, name);
      }
      EXPECT_EQ(switchesOf(contracts, name), u32{0});
      kTestSwitches[index].enable(contracts, name);
      EXPECT_EQ(switchesOf(contracts, name), 1u << index);
      kTestSwitches[index].enable(contracts, name);
      EXPECT_EQ(switchesOf(contracts, name), 1u << index);
      kTestSwitches[index].disable(contracts, name);
      EXPECT_EQ(switchesOf(contracts, name), u32{0});
      for (u32 other = 0; other < kBuiltInCount; ++other) {
        if (other == category) continue;
        EXPECT_EQ(switchesOf(contracts, kBuiltInNames[other]), kBuiltInSwitches[other]);
      }
    }
  }
}

TEST(AssertConfiguration, EachOptionSetsOneSwitchOfOneCategoryInEitherState) {
  for (u32 category = 0; category < kBuiltInCount; ++category) {
    for (u32 index = 0; index < kTestSwitchCount; ++index) {
      tPrivateContracts contracts;
      char const* const name = kBuiltInNames[category];
      char const* const option = kTestSwitches[index].option;
      u32 const before = kBuiltInSwitches[category];
      configureWords(contracts, "--category", name, option, "on");
      EXPECT_EQ(switchesOf(contracts, name), before | 1u << index);
      configureWords(contracts, option, "off");
      EXPECT_EQ(switchesOf(contracts, name), before & ~(1u << index));
      configureWords(contracts, option);
      EXPECT_EQ(switchesOf(contracts, name), before | 1u << index);
      for (u32 other = 0; other < kBuiltInCount; ++other) {
        if (other == category) continue;
        EXPECT_EQ(switchesOf(contracts, kBuiltInNames[other]), kBuiltInSwitches[other]);
      }
    }
  }
}

TEST(AssertConfiguration, AQueryOfAnUnknownCategoryIsFalseAndMakesNone) {
  tPrivateContracts contracts;
  tContractsText const before(contracts, 0);
  for (char const* name : tTexts{"rack", "", "Default", "defaul", "default ", "defaults", "on"}) {
    EXPECT_EQ(switchesOf(contracts, name), u32{0});
  }
  tContractsText const after(contracts, 1);
  EXPECT_STREQ(before.text, after.text);
}

TEST(AssertConfiguration, SettingASwitchOfAnUnknownCategoryMakesNone) {
  tPrivateContracts contracts;
  tContractsText const before(contracts, 0);
  for (tTestSwitch const& entry : kTestSwitches) {
    entry.enable(contracts, "rack");
    entry.disable(contracts, "rack");
    EXPECT_FALSE(entry.isOn(contracts, "rack"));
  }
  tContractsText const after(contracts, 1);
  EXPECT_STREQ(before.text, after.text);
}

TEST(AssertConfiguration, NullIsNoCategory) {
  tPrivateContracts contracts;
  char* const none = nullptr;
  EXPECT_EQ(switchesOf(contracts, nullptr), u32{0});
  EXPECT_FALSE(contracts.checksAreEnabled(none));
  contracts.disableChecks(none);
  contracts.enableChecks(none);
  EXPECT_TRUE(hasBuiltInSwitches(contracts));
}

TEST(AssertConfiguration, AccessorsTakeTextsThatMayBeChangedToo) {
  tPrivateContracts contracts;
  char name[] = "warning";
  contracts.enableBreakOnViolation(name);
  EXPECT_TRUE(contracts.breakOnViolationIsEnabled(name));
  contracts.disableBreakOnViolation(name);
  EXPECT_FALSE(contracts.breakOnViolationIsEnabled(name));
}

TEST(AssertConfiguration, ACategoryIsKnownByItsTextNotByItsAddress) {
  tPrivateContracts contracts;
  char name[] = "rack";
  configureWords(contracts, "--category", name, "--checks", "off");
  name[0] = 'b';
  EXPECT_EQ(switchesOf(contracts, "rack"), kSwitchesOfANewCategory & ~kSwitchChecks);
  EXPECT_EQ(switchesOf(contracts, "back"), u32{0});
}

TEST(AssertConfiguration, ManyCategoriesAreKeptApart) {
  tPrivateContracts contracts;
  char name[] = "c000";
  for (u32 number = 0; number < 200; ++number) {
    name[1] = static_cast<char>('0' + number / 100);
    name[2] = static_cast<char>('0' + number / 10 % 10);
    name[3] = static_cast<char>('0' + number % 10);
    configureWords(contracts, "--category", name, "--terminate", number % 3 == 0 ? "on" : "off");
  }
  for (u32 number = 0; number < 200; ++number) {
    name[1] = static_cast<char>('0' + number / 100);
    name[2] = static_cast<char>('0' + number / 10 % 10);
    name[3] = static_cast<char>('0' + number % 10);
    u32 const terminate = number % 3 == 0 ? kSwitchTerminate : 0;
    EXPECT_EQ(switchesOf(contracts, name), kSwitchesOfANewCategory | terminate);
  }
  EXPECT_TRUE(hasBuiltInSwitches(contracts));
}

TEST(AssertConfiguration, OneObjectServesEveryCategory) {
  char known[] = "warning";
  char unknown[] = "rack";
  tAssertConfiguration& instance = tAssertConfiguration::getInstance();
  EXPECT_TRUE(&tAssertConfiguration::getInstance(known) == &instance);
  EXPECT_TRUE(&tAssertConfiguration::getInstance(unknown) == &instance);
  EXPECT_TRUE(&tAssertConfiguration::getInstance(nullptr) == &instance);
  EXPECT_EQ(switchesOf(instance, "rack"), u32{0});
}

TEST(AssertConfiguration, TheModulesObjectIsBuiltWithTheModule) {
  EXPECT_TRUE(hasBuiltInSwitches(tAssertConfiguration::getInstance()));
}

TEST(AssertConfiguration, ItHasNoConfigurationSourceOfItsOwn) {
  tPrivateContracts contracts;
  configureWords(contracts, "--checks", "off");
  tContractsText const before(contracts, 0);
  contracts.configure();
  tContractsText const after(contracts, 1);
  EXPECT_STREQ(before.text, after.text);
}
