#include "conformance/harness.h"
#include "vexk/statusCodes.h"
#include "vexk/version.h"

namespace {

constexpr tSSVersion kZero(0);
constexpr tSSVersion kGreatest(255, 15, 15, tSSVersion::kPhaseReleased, 4095, 0);

}  // namespace

TEST(PlatformVersion, IsAtLeastTwo) {
  EXPECT_GE(kVexVersion.getMajor(), 2u);
  EXPECT_TRUE(kVexOldestCompatible <= kVexVersion);
}

TEST(PlatformVersion, ServesWhoIsBuiltAgainstIt) {
  EXPECT_EQ(0, vexCompareVersion(kVexVersion, kVexVersion));
  EXPECT_EQ(0, vexCompareVersion(kVexVersion, tSSVersion(0x02000000)));
  EXPECT_EQ(0, vexCompareVersion(kVexOldestCompatible, kZero));
  EXPECT_EQ(0, vexCompareVersion(kGreatest, kZero));
}

TEST(PlatformVersion, IsTooOldForWhoWantsANewerOne) {
  EXPECT_EQ(kStatusVersionMismatch, vexCompareVersion(kGreatest, kGreatest));
  EXPECT_EQ(kStatusVersionMismatch,
            vexCompareVersion(kGreatest, tSSVersion(kVexVersion.getPacked() + 1)));
}

TEST(PlatformVersion, IsTooNewForWhoWasBuiltBeforeItsOldest) {
  EXPECT_EQ(kStatusVersionMismatch, vexCompareVersion(kZero, kZero));
  EXPECT_EQ(kStatusVersionMismatch,
            vexCompareVersion(tSSVersion(1, 15, 15, tSSVersion::kPhaseReleased, 4095, 0), kZero));
}
