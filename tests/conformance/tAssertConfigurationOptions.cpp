// How the words of assertion options are read, oddities included.

#include "conformance/harness.h"
#include "support/assertSwitches.h"
#include "support/tTexts.h"

namespace {

constexpr u32 kNew = kSwitchesOfANewCategory;

}  // namespace

TEST(AssertOptions, ABareSwitchIsOnForTheCurrentCategory) {
  tPrivateContracts contracts;
  contracts.disableChecks("default");
  configureWords(contracts, "--checks");
  EXPECT_EQ(switchesOf(contracts, "default"), kNew);
}

TEST(AssertOptions, OptionsAreAboutDefaultAtFirst) {
  tPrivateContracts contracts;
  configureWords(contracts, "--checks", "off");
  EXPECT_EQ(switchesOf(contracts, "default"), kNew & ~kSwitchChecks);
}

TEST(AssertOptions, ASwitchBeforeAnotherOptionIsOnAndTheOptionIsRead) {
  tPrivateContracts contracts;
  contracts.disableBreakOnViolation("default");
  configureWords(contracts, "--break", "--checks", "off");
  EXPECT_EQ(switchesOf(contracts, "default"), kNew & ~kSwitchChecks);
}

TEST(AssertOptions, ASwitchBeforeItselfIsOnAndReadsItsValue) {
  tPrivateContracts contracts;
  configureWords(contracts, "--checks", "--checks", "off");
  EXPECT_FALSE(contracts.checksAreEnabled("default"));
}

TEST(AssertOptions, ASwitchBeforeCategoryIsOnAndTheCategoryIsRead) {
  tPrivateContracts contracts;
  configureWords(contracts, "--terminate", "--category", "warning", "--checks", "off");
  EXPECT_EQ(switchesOf(contracts, "default"), kNew | kSwitchTerminate);
  EXPECT_EQ(switchesOf(contracts, "warning"), kNew & ~(kSwitchBreak | kSwitchChecks));
}

TEST(AssertOptions, ASwitchBeforeAForeignWordIsOnAndTheWordIsIgnored) {
  for (char const* foreign : tTexts{"ON", "Off", "off ", "", "rack", "1", "--nonsense"}) {
    tPrivateContracts contracts;
    contracts.disableChecks("default");
    configureWords(contracts, "--checks", foreign, "off", "--break", "off");
    EXPECT_EQ(switchesOf(contracts, "default"), kNew & ~kSwitchBreak);
  }
}

TEST(AssertOptions, ASwitchTakesOneWordOnly) {
  tPrivateContracts contracts;
  configureWords(contracts, "--checks", "on", "off");
  EXPECT_TRUE(contracts.checksAreEnabled("default"));
}

TEST(AssertOptions, UnknownWordsAreIgnored) {
  tPrivateContracts contracts;
  tContractsText const before(contracts, 0);
  configureWords(contracts, "on", "off", "", "-checks", "--Checks", "--check", "--checks ", "--",
                 "rack", "--categories");
  tContractsText const after(contracts, 1);
  EXPECT_STREQ(before.text, after.text);
}

TEST(AssertOptions, TheLastOfSeveralValuesCounts) {
  tPrivateContracts contracts;
  contracts.configure("--checks off --checks on --break on --break off");
  EXPECT_EQ(switchesOf(contracts, "default"), kNew & ~kSwitchBreak);
}

TEST(AssertOptions, ANewNameMakesACategoryWithTheSwitchesOfANewOne) {
  tPrivateContracts contracts;
  configureWords(contracts, "--category", "rack");
  EXPECT_EQ(switchesOf(contracts, "rack"), kNew);
}

TEST(AssertOptions, ANewCategoryBecomesCurrentAtOnce) {
  tPrivateContracts contracts;
  configureWords(contracts, "--category", "rack", "--terminate");
  EXPECT_EQ(switchesOf(contracts, "rack"), kNew | kSwitchTerminate);
  EXPECT_EQ(switchesOf(contracts, "default"), kNew);
}

TEST(AssertOptions, AKnownNameKeepsItsSwitches) {
  tPrivateContracts contracts;
  configureWords(contracts, "--category", "rack", "--checks", "off");
  configureWords(contracts, "--category", "default", "--category", "rack");
  EXPECT_EQ(switchesOf(contracts, "rack"), kNew & ~kSwitchChecks);
}

TEST(AssertOptions, TheCurrentCategoryLastsFromOneCallToTheNext) {
  tPrivateContracts contracts;
  configureWords(contracts, "--category", "statusFatal");
  configureWords(contracts, "--break", "off");
  EXPECT_FALSE(contracts.breakOnViolationIsEnabled("statusFatal"));
  EXPECT_TRUE(contracts.breakOnViolationIsEnabled("default"));
}

TEST(AssertOptions, CategoryBeforeAnOptionSwallowsIt) {
  tPrivateContracts contracts;
  configureWords(contracts, "--category", "--break", "off");
  EXPECT_EQ(switchesOf(contracts, "default"), kNew);
}

TEST(AssertOptions, CategoryBeforeAnOptionMeansDefault) {
  tPrivateContracts contracts;
  configureWords(contracts, "--category", "warning", "--category", "--break", "off", "--checks",
                 "off");
  EXPECT_EQ(switchesOf(contracts, "default"), kNew & ~kSwitchChecks);
  EXPECT_EQ(switchesOf(contracts, "warning"), kNew & ~kSwitchBreak);
}

TEST(AssertOptions, CategoryBeforeCategorySwallowsIt) {
  tPrivateContracts contracts;
  configureWords(contracts, "--category", "--category", "rack", "--checks", "off");
  EXPECT_EQ(switchesOf(contracts, "rack"), u32{0});
  EXPECT_EQ(switchesOf(contracts, "default"), kNew & ~kSwitchChecks);
}

TEST(AssertOptions, AnyWordWithoutTwoDashesIsACategoryName) {
  for (char const* name :
       tTexts{"on", "off", "", "-x", "-", "x --y", "\"", "\x80\xFF", "default "}) {
    tPrivateContracts contracts;
    configureWords(contracts, "--category", name, "--checks", "off");
    EXPECT_EQ(switchesOf(contracts, name), kNew & ~kSwitchChecks);
    EXPECT_EQ(switchesOf(contracts, "default"), kNew);
  }
}

TEST(AssertOptions, TwoDashesAloneAreNoName) {
  tPrivateContracts contracts;
  configureWords(contracts, "--category", "warning", "--category", "--", "--checks", "off");
  EXPECT_EQ(switchesOf(contracts, "--"), u32{0});
  EXPECT_FALSE(contracts.checksAreEnabled("default"));
}

TEST(AssertOptions, ATrailingCategoryHasNoEffectNotEvenOnTheNextCall) {
  tPrivateContracts contracts;
  configureWords(contracts, "--category", "warning", "--category");
  configureWords(contracts, "rack", "--checks", "off");
  EXPECT_EQ(switchesOf(contracts, "rack"), u32{0});
  EXPECT_FALSE(contracts.checksAreEnabled("warning"));
  EXPECT_TRUE(contracts.checksAreEnabled("default"));
}

TEST(AssertOptions, ATrailingSwitchIsDoneWithTheCall) {
  tPrivateContracts contracts;
  contracts.disableChecks("default");
  configureWords(contracts, "--checks");
  configureWords(contracts, "off");
  EXPECT_TRUE(contracts.checksAreEnabled("default"));
}

TEST(AssertOptions, NoWordsChangeNothing) {
  tPrivateContracts contracts;
  contracts.disableChecks("default");
  tContractsText const before(contracts, 0);
  char option[] = "--checks";
  char* words[] = {option};
  contracts.configure(1, nullptr);
  contracts.configure(0, words);
  contracts.configure(-1, words);
  contracts.configure(-0x7FFFFFFF - 1, words);
  contracts.configure(0, nullptr);
  contracts.configure("");
  tContractsText const after(contracts, 1);
  EXPECT_STREQ(before.text, after.text);
}

TEST(AssertOptions, NoMoreWordsAreReadThanGiven) {
  tPrivateContracts contracts;
  char option[] = "--checks";
  char off[] = "off";
  char* words[] = {option, off};
  contracts.configure(1, words);
  EXPECT_TRUE(contracts.checksAreEnabled("default"));
}

TEST(AssertOptions, WordsAreNotChanged) {
  tPrivateContracts contracts;
  char first[] = "--category";
  char second[] = "rack";
  char* words[] = {first, second};
  contracts.configure(2, words);
  EXPECT_STREQ(first, "--category");
  EXPECT_STREQ(second, "rack");
}

TEST(AssertOptions, ATextIsSplitIntoWords) {
  tPrivateContracts contracts;
  contracts.configure("  --category \"my rack\"\t--checks off --category \"\" --break off");
  EXPECT_EQ(switchesOf(contracts, "my rack"), kNew & ~kSwitchChecks);
  EXPECT_EQ(switchesOf(contracts, ""), kNew & ~kSwitchBreak);
}

TEST(AssertOptions, ANullWordEndsTheList) {
  tPrivateContracts contracts;
  char const* const none = nullptr;
  configureWords(contracts, "--checks", "off", none, "--break", "off");
  EXPECT_EQ(switchesOf(contracts, "default"), kNew & ~kSwitchChecks);
}
