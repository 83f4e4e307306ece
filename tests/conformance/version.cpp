#include "oxdiagk/version.h"

#include "conformance/harness.h"
#include "support/callerCodes.h"
#include "vexk/statusCodes.h"

using nOXDIAG100::compareVersion;
using nOXDIAG100::getCurrentVersion;
using nOXDIAG100::getOldestCompatibleVersion;

namespace {

constexpr tSSVersion kFirst(0);
constexpr tSSVersion kLast(255, 15, 15, tSSVersion::kPhaseReleased, 4095, 0);
constexpr tSSVersion kOldestCompatible(1, 0, 0, tSSVersion::kPhaseReleased, 7, 0);
constexpr tSSVersion kBuildBeforeIt(1, 0, 0, tSSVersion::kPhaseReleased, 6, 0);

tSSVersion current() {
  i32 status = 0;
  return getCurrentVersion(status);
}

tSSVersion nextBuild() {
  return tSSVersion(current().getPacked() + 1);
}

// The status that a client gets that comes with `status`, named by its range from old to new.
i32 compared(tSSVersion oldestWanted, tSSVersion newestWanted, i32 status = 0) {
  compareVersion(newestWanted, oldestWanted, status, "client");
  return status;
}

}  // namespace

TEST(Version, TheOldestCompatibleOneIsBuildSevenOfTheFirstRelease) {
  i32 status = 0;
  tSSVersion const oldest = getOldestCompatibleVersion(status);
  EXPECT_EQ(oldest.getPacked(), u32{0x01001007});
  char text[tSSVersion::kMaxTextSize];
  EXPECT_STREQ(oldest.toString(text), "1.0.0f7");
}

TEST(Version, TheCurrentOneIsNotOlderThanTheOldestCompatibleOne) {
  EXPECT_TRUE(current() >= kOldestCompatible);
}

TEST(Version, TheCurrentOneIsOfAKnownPhase) {
  EXPECT_LE(u32{current().getPhase()}, u32{tSSVersion::kPhaseAlpha});
}

TEST(Version, TheCurrentOneHasABuildAfterIt) {
  EXPECT_TRUE(nextBuild() > current());
}

TEST(Version, AskingLeavesTheStatusAlone) {
  i32 const before[] = {0, 1, -1, kWarning, kEarlierError, 0x7FFFFFFF, -0x7FFFFFFF - 1};
  for (i32 const status : before) {
    i32 after = status;
    getCurrentVersion(after);
    EXPECT_EQ(after, status);
    getOldestCompatibleVersion(after);
    EXPECT_EQ(after, status);
  }
}

TEST(Version, AnEarlierErrorDoesNotChangeTheAnswer) {
  i32 status = kEarlierError;
  EXPECT_EQ(getCurrentVersion(status).getPacked(), current().getPacked());
  EXPECT_EQ(getOldestCompatibleVersion(status).getPacked(), kOldestCompatible.getPacked());
}

TEST(VersionComparison, ARangeInsideTheInstalledOneIsGood) {
  tSSVersion const inside(1, 0, 1, tSSVersion::kPhaseReleased, 0, 0);
  EXPECT_EQ(compared(inside, inside), 0);
}

TEST(VersionComparison, TheInstalledRangeItselfIsGood) {
  EXPECT_EQ(compared(kOldestCompatible, current()), 0);
}

TEST(VersionComparison, EitherBoundAloneIsGood) {
  EXPECT_EQ(compared(kOldestCompatible, kOldestCompatible), 0);
  EXPECT_EQ(compared(current(), current()), 0);
}

TEST(VersionComparison, ARangeAroundTheInstalledOneIsGood) {
  EXPECT_EQ(compared(kFirst, kLast), 0);
}

TEST(VersionComparison, RangesThatTouchInOneVersionAreGood) {
  EXPECT_EQ(compared(kFirst, kOldestCompatible), 0);
  EXPECT_EQ(compared(current(), kLast), 0);
}

TEST(VersionComparison, AClientThatNeedsTheNextBuildFails) {
  EXPECT_EQ(compared(nextBuild(), nextBuild()), kStatusVersionMismatch);
  EXPECT_EQ(compared(nextBuild(), kLast), kStatusVersionMismatch);
}

TEST(VersionComparison, AClientThatIsContentWithTheCurrentOneMayKnowALaterOne) {
  EXPECT_EQ(compared(current(), nextBuild()), 0);
}

TEST(VersionComparison, AClientThatEndsOneBuildTooEarlyFails) {
  EXPECT_EQ(compared(kFirst, kBuildBeforeIt), kStatusVersionMismatch);
  EXPECT_EQ(compared(kBuildBeforeIt, kBuildBeforeIt), kStatusVersionMismatch);
}

TEST(VersionComparison, AClientThatBeganBeforeTheOldestCompatibleOneMayReachIntoTheRange) {
  EXPECT_EQ(compared(kBuildBeforeIt, kOldestCompatible), 0);
}

TEST(VersionComparison, EveryUnreleasedBuildOfTheFirstReleaseIsTooOld) {
  EXPECT_EQ(compared(kFirst, tSSVersion(1, 0, 0, tSSVersion::kPhaseBeta, 4095, 0)),
            kStatusVersionMismatch);
  EXPECT_EQ(compared(kFirst, tSSVersion(1, 0, 0, tSSVersion::kPhaseAlpha, 4095, 0)),
            kStatusVersionMismatch);
  EXPECT_EQ(compared(kFirst, tSSVersion(1, 0, 0, tSSVersion::kPhaseDevelopment, 4095, 0)),
            kStatusVersionMismatch);
}

TEST(VersionComparison, TheExtremesFail) {
  EXPECT_EQ(compared(kFirst, kFirst), kStatusVersionMismatch);
  EXPECT_EQ(compared(kLast, kLast), kStatusVersionMismatch);
  EXPECT_EQ(compared(tSSVersion(0xFFFFFFFF), tSSVersion(0xFFFFFFFF)), kStatusVersionMismatch);
}

TEST(VersionComparison, TheNewestIsTheFirstArgument) {
  i32 status = 0;
  compareVersion(kLast, kFirst, status, "client");
  EXPECT_EQ(status, 0);
  compareVersion(kFirst, kLast, status, "client");
  EXPECT_EQ(status, kStatusVersionMismatch);
}

TEST(VersionComparison, OneVersionMayBeBothBounds) {
  tSSVersion const wanted = current();
  i32 status = 0;
  compareVersion(wanted, wanted, status, "client");
  EXPECT_EQ(status, 0);
}

TEST(VersionComparison, TheMismatchHasItsOwnCode) {
  EXPECT_EQ(compared(kLast, kLast), -50708);
}

TEST(VersionComparison, AWarningSurvivesAGoodCheck) {
  EXPECT_EQ(compared(kFirst, kLast, 1), 1);
  EXPECT_EQ(compared(kFirst, kLast, kWarning), kWarning);
  EXPECT_EQ(compared(kFirst, kLast, 0x7FFFFFFF), 0x7FFFFFFF);
}

TEST(VersionComparison, AFailureReplacesAWarning) {
  EXPECT_EQ(compared(kLast, kLast, 1), kStatusVersionMismatch);
  EXPECT_EQ(compared(kLast, kLast, kWarning), kStatusVersionMismatch);
}

TEST(VersionComparison, AnEarlierErrorStays) {
  EXPECT_EQ(compared(kFirst, kLast, -1), -1);
  EXPECT_EQ(compared(kLast, kLast, -1), -1);
  EXPECT_EQ(compared(kLast, kLast, kEarlierError), kEarlierError);
  EXPECT_EQ(compared(kLast, kLast, -0x7FFFFFFF - 1), -0x7FFFFFFF - 1);
}

TEST(VersionComparison, ACallerWithoutANameGetsTheSameAnswers) {
  i32 status = 0;
  compareVersion(kLast, kFirst, status, nullptr);
  EXPECT_EQ(status, 0);
  compareVersion(kFirst, kFirst, status, nullptr);
  EXPECT_EQ(status, kStatusVersionMismatch);
}

TEST(VersionComparison, NothingIsRemembered) {
  EXPECT_EQ(compared(kLast, kLast), kStatusVersionMismatch);
  EXPECT_EQ(compared(kFirst, kLast), 0);
}
