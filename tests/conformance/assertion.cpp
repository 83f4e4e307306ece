// Whether contracts are checked, and what happens when one does not hold. Nothing here may break or
// terminate: in a driver that would be the end of the run. The host's own tests watch that.

#include "oxdiagk/assertion.h"

#include "conformance/harness.h"
#include "support/assertSwitches.h"
#include "support/contractStream.h"
#include "support/tTexts.h"

namespace {

constexpr tSSVersion kVersion(1, 0, 0, tSSVersion::kPhaseReleased, 7, 0);

char* changeable(char const* text) {
  return const_cast<char*>(text);
}

using tEvaluate = bool(char const* category);

#define EVALUATION(name)                                                              \
  [](char const* category) {                                                          \
    return nOXDIAG100::name(changeable(category), nullptr, tSSVersion(), 0, nullptr); \
  }
// In the order of the switches, from the preconditions on.
constexpr tEvaluate* kEvaluations[] = {
    EVALUATION(evalRequire),       EVALUATION(evalEnsure), EVALUATION(evalClassInvariant),
    EVALUATION(evalLoopInvariant), EVALUATION(evalCheck),  EVALUATION(evalException)};
#undef EVALUATION
constexpr u32 kEvaluationCount = 6;
constexpr u32 kFirstEvaluated = 2;

void notify(char const* category, char const* message) {
  nOXDIAG100::notificationAction(changeable(category), changeable("rack"), kVersion, 42,
                                 changeable("source/io\\port.cpp"), changeable(message));
}

void goOn(char const* category) {
  nOXDIAG100::continuationAction(changeable(category), changeable("rack"), kVersion, 42,
                                 changeable("port.cpp"));
}

// `count` times the letter x, in fixed storage.
constinit char longText[600] = {};
char const* repeated(u32 count) {
  __builtin_memset(longText, 'x', count);
  longText[count] = 0;
  return longText;
}

}  // namespace

TEST(AssertEvaluation, EachTellsItsOwnSwitchOfTheCategoryInEitherState) {
  tContractStream stream;
  for (char const* category : kBuiltInNames) {
    for (u32 index = 0; index < kEvaluationCount; ++index) {
      for (tTestSwitch const& entry : kTestSwitches) entry.disable(stream.contracts, category);
      for (u32 other = 0; other < kEvaluationCount; ++other) {
        EXPECT_FALSE(kEvaluations[other](category));
      }
      kTestSwitches[kFirstEvaluated + index].enable(stream.contracts, category);
      for (u32 other = 0; other < kEvaluationCount; ++other) {
        EXPECT_EQ(kEvaluations[other](category), other == index);
      }
    }
  }
}

TEST(AssertEvaluation, TerminateAndBreakDecideNothing) {
  tContractStream stream;
  stream.contracts.enableTerminateOnViolation("warning");
  stream.contracts.enableBreakOnViolation("warning");
  for (tEvaluate* evaluate : kEvaluations) EXPECT_TRUE(evaluate("warning"));
  stream.contracts.disableTerminateOnViolation("warning");
  stream.contracts.disableBreakOnViolation("warning");
  for (tEvaluate* evaluate : kEvaluations) EXPECT_TRUE(evaluate("warning"));
}

TEST(AssertEvaluation, EverythingOfDefaultIsCheckedAtFirst) {
  for (tEvaluate* evaluate : kEvaluations) EXPECT_TRUE(evaluate("default"));
}

TEST(AssertEvaluation, ExceptionsOfStatusesAreNotCheckedAtFirst) {
  for (char const* category : tTexts{"statusFatal", "statusWarning"}) {
    EXPECT_FALSE(kEvaluations[kEvaluationCount - 1](category));
    EXPECT_TRUE(kEvaluations[0](category));
  }
}

TEST(AssertEvaluation, NothingOfAnUnknownCategoryIsChecked) {
  for (char const* category : tTexts{"rack", "", "Default", "defaults"}) {
    for (tEvaluate* evaluate : kEvaluations) EXPECT_FALSE(evaluate(category));
  }
}

TEST(AssertEvaluation, NothingOfNoCategoryIsChecked) {
  for (tEvaluate* evaluate : kEvaluations) EXPECT_FALSE(evaluate(nullptr));
}

TEST(AssertNotification, TheHeadOfDefaultNamesNoCategory) {
  tContractStream stream;
  notify("default", "slot < count");
  EXPECT_STREQ("ASSERTION FAILED: slot < count\n", stream.text());
}

TEST(AssertNotification, TheHeadOfWarningSaysWarning) {
  tContractStream stream;
  notify("warning", "slot < count");
  EXPECT_STREQ("ASSERTION WARNING: slot < count\n", stream.text());
}

TEST(AssertNotification, TheHeadOfAnyOtherCategoryNamesIt) {
  tContractStream stream;
  notify("statusFatal", "a");
  notify("statusWarning", "b");
  notify("Default", "c");
  notify("warnings", "d");
  EXPECT_STREQ(
      "ASSERTION FAILED (statusFatal): a\n"
      "ASSERTION FAILED (statusWarning): b\n"
      "ASSERTION FAILED (Default): c\n"
      "ASSERTION FAILED (warnings): d\n",
      stream.text());
}

TEST(AssertNotification, AnUnknownCategoryIsReportedAllTheSame) {
  tContractStream stream;
  notify("no such category", "a");
  notify("", "b");
  EXPECT_STREQ("ASSERTION FAILED (no such category): a\nASSERTION FAILED (): b\n", stream.text());
}

TEST(AssertNotification, ACategoryIsKnownByItsTextNotByItsAddress) {
  tContractStream stream;
  char category[] = "xefault";
  category[0] = 'd';
  notify(category, "a");
  EXPECT_STREQ("ASSERTION FAILED: a\n", stream.text());
}

TEST(AssertNotification, NullCountsAsEmptyText) {
  tContractStream stream;
  stream.trace.configure(
      "--compname on --filename on --linenumber on --prefixwidth 0 "
      "--truncation off");
  nOXDIAG100::notificationAction(nullptr, nullptr, tSSVersion(), 0, nullptr, nullptr);
  EXPECT_STREQ("[--0--] ASSERTION FAILED (): \n", stream.text());
}

TEST(AssertNotification, TheLineHasThePrefixOfTheContract) {
  tContractStream stream;
  stream.trace.configure(
      "--compname on --compver on --linenumber on --filename on "
      "--verbosity on --truncation off");
  notify("default", "x");
  EXPECT_STREQ("[rack--1.0.0f7--42--port.cpp--105] ASSERTION FAILED: x\n", stream.text());
}

TEST(AssertNotification, TheDefaultFilterShowsIt) {
  tContractStream stream;
  stream.trace.configure("--filter --filter verbosity>=100");
  notify("default", "x");
  EXPECT_STREQ("ASSERTION FAILED: x\n", stream.text());
}

TEST(AssertNotification, AFilterAtItsLevelShowsIt) {
  tContractStream stream;
  stream.trace.configure("--filter --filter verbosity>=105");
  notify("default", "x");
  EXPECT_STREQ("ASSERTION FAILED: x\n", stream.text());
}

TEST(AssertNotification, AFilterAboveItsLevelHidesItButTheLineIsEnded) {
  tContractStream stream;
  stream.trace.configure("--filter --filter verbosity>=106");
  notify("default", "x");
  EXPECT_STREQ("", stream.text());
  EXPECT_TRUE(stream.trace.isLineShown());
}

TEST(AssertNotification, NothingIsWrittenWhileTracingIsOff) {
  tContractStream stream;
  stream.trace.disable();
  notify("default", "x");
  stream.trace.enable();
  EXPECT_STREQ("", stream.text());
  EXPECT_EQ(u32{0}, stream.record.pieceCount());
}

TEST(AssertNotification, ItIsALineLikeAnyOtherWithinABlock) {
  tContractStream stream;
  i32 const level = stream.trace.getNestingLevel();
  stream.trace.putPrefix("rack", kVersion, 1, "f", 100, nOXDIAG100::tTrace::kBlockEntry).endl();
  stream.record.clear();
  notify("default", "x");
  EXPECT_EQ(level + 1, stream.trace.getNestingLevel());
  EXPECT_STREQ("  ASSERTION FAILED: x\n", stream.text());
  stream.trace.putPrefix("rack", kVersion, 1, "f", 100, nOXDIAG100::tTrace::kBlockExit).endl();
  EXPECT_EQ(level, stream.trace.getNestingLevel());
}

TEST(AssertNotification, ALongMessageArrivesInPieces) {
  tContractStream stream;
  constexpr u32 kHead = sizeof("ASSERTION FAILED: ") - 1;
  constexpr u32 kPiece = 255;
  notify("default", repeated(kPiece - kHead - 1));
  EXPECT_EQ(u32{1}, stream.record.pieceCount());
  EXPECT_EQ(kPiece, stream.record.pieceLength(0));
  stream.record.clear();
  notify("default", repeated(kPiece - kHead));
  EXPECT_EQ(u32{2}, stream.record.pieceCount());
  EXPECT_EQ(kPiece, stream.record.pieceLength(0));
  EXPECT_TRUE(stream.record.pieceIs(1, "\n"));
  stream.record.clear();
  notify("default", repeated(kPiece - kHead + 1));
  EXPECT_EQ(u32{2}, stream.record.pieceCount());
  EXPECT_TRUE(stream.record.pieceIs(1, "x\n"));
}

TEST(AssertNotification, ANewlineInTheMessageEndsAPiece) {
  tContractStream stream;
  notify("default", "one\ntwo");
  EXPECT_EQ(u32{2}, stream.record.pieceCount());
  EXPECT_TRUE(stream.record.pieceIs(0, "ASSERTION FAILED: one\n"));
  EXPECT_TRUE(stream.record.pieceIs(1, "two\n"));
}

TEST(AssertNotification, TheMessageIsNotTakenForAFormat) {
  tContractStream stream;
  notify("%s", "%d%n%%");
  EXPECT_STREQ("ASSERTION FAILED (%s): %d%n%%\n", stream.text());
}

TEST(AssertContinuation, ACategoryWithoutBreakAndTerminateGoesOnAndWritesNothing) {
  tContractStream stream;
  for (char const* category : kBuiltInNames) goOn(category);
  EXPECT_EQ(u32{0}, stream.record.pieceCount());
}

TEST(AssertContinuation, WarningGoesOnAtFirst) {
  tPrivateContracts const fresh;
  EXPECT_EQ(switchesOf(fresh, "warning"),
            switchesOf(nOXDIAG100::tAssertConfiguration::getInstance(), "warning"));
  goOn("warning");
}

TEST(AssertContinuation, AnUnknownCategoryGoesOnAndWritesNothing) {
  tContractStream stream;
  for (char const* category : tTexts{"no such category", "", "Default"}) goOn(category);
  goOn(nullptr);
  EXPECT_EQ(u32{0}, stream.record.pieceCount());
}
