// Platforms on which the library does not load, and what it says then.

#include <gtest/gtest.h>

#include "ntos/status.h"
#include "ntoshost/executive.h"
#include "tImage.h"
#include "tPlatform.h"
#include "trace/capturedPrint.h"
#include "vexk/version.h"
#include "vexkhost/platformVersion.h"

namespace {

constexpr NTSTATUS kUnableToLoad = static_cast<NTSTATUS>(0xC000026C);
constexpr char kTooOld[] = "VEX Version 2.0 or later required\n";

// A load on a platform of this version.
class tLoadOn {
 public:
  explicit tLoadOn(tSSVersion current, tSSVersion oldest = tSSVersion(0)) {
    vexkhost::setPlatformVersion(current, oldest);
    tPlatform const platform;
    tImage const image;
    tCapturedPrint const print;
    status = image.initialise();
    events = platform.getEventTexts();
    if (status == STATUS_SUCCESS) image.unload();
    printed = print.text();
    vexkhost::resetPlatformVersion();
  }

  NTSTATUS status = 0;
  std::string printed;
  std::string events;
};

}  // namespace

TEST(PlatformVersions, WithoutAPlatformNothingIsLoadedOrSaid) {
  tImage const image;
  tCapturedPrint const print;
  EXPECT_EQ(image.initialise(), kUnableToLoad);
  EXPECT_EQ(print.text(), "");
  EXPECT_TRUE(image.isGone());
  EXPECT_EQ(ntoshost::outstandingBlocks(), 0u);
}

TEST(PlatformVersions, AnOlderOneIsRefusedInWords) {
  for (tSSVersion const version :
       {tSSVersion(0), tSSVersion(1, 0, 0, tSSVersion::kPhaseReleased, 0, 0),
        tSSVersion(1, 15, 15, tSSVersion::kPhaseReleased, 4095, 0)}) {
    tLoadOn const load(version);
    EXPECT_EQ(load.status, kUnableToLoad);
    EXPECT_EQ(load.printed, kTooOld);
    EXPECT_EQ(load.events, "");
  }
}

TEST(PlatformVersions, TheOwnOneIsBackAfterAnother) {
  EXPECT_EQ(tLoadOn(tSSVersion(0)).status, kUnableToLoad);
  tPlatform const platform;
  tImage const image;
  EXPECT_EQ(image.initialise(), STATUS_SUCCESS);
  image.unload();
}

TEST(PlatformVersions, TheOldestGoodOneAndEveryLaterCompatibleOneAreAccepted) {
  for (tSSVersion const version : {tSSVersion(0x02000000), kVexVersion,
                                   tSSVersion(255, 15, 15, tSSVersion::kPhaseReleased, 4095, 0)}) {
    tLoadOn const load(version);
    EXPECT_EQ(load.status, STATUS_SUCCESS);
    EXPECT_EQ(load.printed, "");
  }
}

TEST(PlatformVersions, ALaterOneThatServesOlderClientsNoMoreIsRefused) {
  tSSVersion const later(3, 0, 0, tSSVersion::kPhaseReleased, 0, 0);
  tLoadOn const load(later, later);
  EXPECT_EQ(load.status, kUnableToLoad);
  EXPECT_EQ(load.printed, kTooOld);
}

TEST(PlatformVersions, ALoadAfterARefusedOneIsGood) {
  EXPECT_EQ(tLoadOn(tSSVersion(0)).status, kUnableToLoad);
  EXPECT_EQ(tLoadOn(kVexVersion, kVexOldestCompatible).status, STATUS_SUCCESS);
}
