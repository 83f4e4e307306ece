// Loads in which one call fails, each in a fresh image of one and the same program: what is refused
// leaves nothing, and the next load is whole.

#include <gtest/gtest.h>

#include "ntos/status.h"
#include "ntoshost/executive.h"
#include "oxdiagk/stateRequest.h"
#include "oxdiagk/tunnelRequest.h"
#include "package/loadOutcome.h"
#include "qelmk/qelmk.h"
#include "tImage.h"
#include "tPlatform.h"
#include "trace/capturedPrint.h"
#include "vexk/iLib.h"
#include "vexk/moduleInfo.h"
#include "vexk/statusCodes.h"

namespace {

constexpr NTSTATUS kUnableToLoad = static_cast<NTSTATUS>(0xC000026C);
constexpr i32 kTaken = nQELM100::kStatusClassNameTaken;

// The status of a request to the dispatcher of this name.
i32 statusOfRequest(std::string const& name) {
  i32 status = 0;
  iLib::deliver(name.data(), name.size(), 0, status);
  return status;
}

tLoadOutcome unloadJudged(tImage const& image) {
  tLoadOutcome const outcome = static_cast<tLoadOutcome>(image.getOutcome());
  EXPECT_EQ(image.unload(), STATUS_SUCCESS);
  EXPECT_TRUE(image.isGone());
  return outcome;
}

// What a load in a fresh image came to. Its platform sees to it that nothing is left.
tLoadOutcome load(u32 kinds = 0, u64 n = 0) {
  tPlatform const platform;
  tImage const image;
  tCapturedPrint const print;
  if (n != 0) ntoshost::failNth(kinds, n);
  NTSTATUS const status = image.initialise();
  ntoshost::clearFaults();
  if (status == STATUS_SUCCESS) return unloadJudged(image);
  EXPECT_EQ(status, kUnableToLoad);
  EXPECT_TRUE(image.isGone());
  return kRefused;
}

}  // namespace

TEST(LoadFaults, WithoutOneTheSameProgramLoadsAgainAndAgain) {
  for (int round = 0; round < 20; ++round) ASSERT_EQ(load(), kWhole);
}

TEST(LoadFaults, EveryFailedCallIsRefusedOrSurvivedAndTheNextLoadIsWhole) {
  int seen[kOutcomeCount] = {};
  for (u64 n = 1;; ++n) {
    tLoadOutcome const outcome = load(ntoshost::kFaultAll, n);
    if (ntoshost::faultsInjected() == 0) break;
    SCOPED_TRACE(n);
    ++seen[outcome];
    ASSERT_EQ(load(), kWhole);
  }
  EXPECT_EQ(seen[kWhole], 0);
  EXPECT_EQ(seen[kWrong], 0);
  EXPECT_EQ(seen[kWithoutCategory], 4);
  EXPECT_EQ(seen[kWithoutFilter], 1);
  EXPECT_EQ(seen[kWithEmptyFilter], 1);
  EXPECT_EQ(seen[kWithEmptyHeap], 1);
  EXPECT_GE(seen[kWithoutRegistry], 2);  // its lock, its ring
  // A terminator for each class and for six other entries, the module among the platform's, the
  // heap's record and its lock.
  EXPECT_GE(seen[kRefused], 25 + 6 + 1 + 2);
}

TEST(LoadFaults, EveryAllocationFromOneOnFailing) {
  for (u64 n = 1;; ++n) {
    tPlatform const platform;
    tImage const image;
    tCapturedPrint const print;
    ntoshost::failFrom(ntoshost::kFaultMemory, n);
    NTSTATUS const status = image.initialise();
    ntoshost::clearFaults();
    if (status == STATUS_SUCCESS) {
      unloadJudged(image);
      break;
    }
    ASSERT_EQ(status, kUnableToLoad);
    ASSERT_EQ(tPlatform::findLeftovers(), "");
    ASSERT_TRUE(image.isGone());
  }
  EXPECT_EQ(load(), kWhole);
}

TEST(LoadFaults, AClassNameThatIsTakenIsRefused) {
  for (std::string const& name : kClassNames) {
    SCOPED_TRACE(name);
    {
      tPlatform const platform;
      tImage const image;
      tCapturedPrint const print;
      nQELM100::tClassImplementation other(name.c_str(), nullptr, nullptr);
      i32 status = 0;
      nQELM100::registerClass(other, status);
      ASSERT_EQ(status, 0);
      EXPECT_EQ(image.initialise(), kUnableToLoad);
      std::string const reason = "oxdiagk failed with status " + std::to_string(kTaken) + "\n";
      EXPECT_NE(print.text().find(reason), std::string::npos) << print.text();
      EXPECT_EQ(tPlatform::findLeftovers(), name + " ");
      EXPECT_TRUE(image.isGone());
      nQELM100::unregisterClass(other);
    }
    ASSERT_EQ(load(), kWhole);
  }
}

// What is exported and has no module becomes that of the module that is registered next.
TEST(LoadFaults, OfARefusedLoadNothingIsServed) {
  tPlatform const platform;
  tCapturedPrint const print;
  {
    tImage const image;
    nQELM100::tClassImplementation taken(kClassNames[0].c_str(), nullptr, nullptr);
    i32 status = 0;
    nQELM100::registerClass(taken, status);
    EXPECT_EQ(image.initialise(), kUnableToLoad);
    nQELM100::unregisterClass(taken);
  }
  tModulePackage package = {};
  _tLibModuleInfo next = {&package, "next", [](u32) { return i32{0}; }, 0};
  i32 status = 0;
  libRegisterModuleWithVEX(next, status);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(statusOfRequest(nOXDIAG100::kTunnelName), kStatusNoDispatcher);
  EXPECT_EQ(statusOfRequest(nOXDIAG100::kStateName), kStatusNoDispatcher);
  libUnregisterModuleWithVEX(next, status);
}

TEST(LoadFaults, ATunnelNameThatIsTakenIsSurvived) {
  class tOther : public iLib::iDispatcher {
   public:
    tOther() : iDispatcher(nOXDIAG100::kTunnelName) {}
    void dispatch(u64 /*request*/) override { ++requests; }
    u32 requests = 0;
  };
  tPlatform const platform;
  tImage const image;
  tOther other;
  i32 status = 0;
  iLib::exportDispatcher(other, status);
  ASSERT_EQ(image.initialise(), STATUS_SUCCESS);
  iLib::deliver(nOXDIAG100::kTunnelName, sizeof(nOXDIAG100::kTunnelName) - 1, 0, status);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(other.requests, 1u);
  EXPECT_EQ(unloadJudged(image), kWhole);
  iLib::unexportDispatcher(other, status);
}

TEST(LoadFaults, OfAStartByAWrapperEachIsRefusedOrWhole) {
  u32 refused = 0;
  for (u64 n = 1;; ++n) {
    tPlatform const platform;
    tImage const image;
    tCapturedPrint const print;
    ntoshost::failNth(ntoshost::kFaultMemory, n);
    i32 const status = image.callSSMain(0);
    ntoshost::clearFaults();
    if (status < 0) {
      ++refused;
    } else {
      EXPECT_NE(image.getOutcome(), kWrong) << n;
      EXPECT_EQ(image.callSSMain(1), 0);
    }
    EXPECT_TRUE(image.isGone()) << n;
    if (ntoshost::faultsInjected() == 0) break;
  }
  EXPECT_GE(refused, 25u);
}
