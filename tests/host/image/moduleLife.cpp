// The turns of the module's life: load, entry, unload, and what is told of them.

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "ntos/status.h"
#include "ntoshost/executive.h"
#include "ntoshost/faults.h"
#include "oxdiagk/tunnelRequest.h"
#include "package/loadOutcome.h"
#include "patterns.h"
#include "tImage.h"
#include "tPlatform.h"
#include "trace/capturedPrint.h"
#include "vexk/iLib.h"
#include "vexk/statusCodes.h"

namespace {

using nOXDIAG100::kTunnelName;

constexpr NTSTATUS kUnableToLoad = static_cast<NTSTATUS>(0xC000026C);
constexpr char kFailedMain[] =
    "ssKernelExportDriver .\\source\\package\\windows\\clientPkgExportDriver:124 - "
    "ssMain(0) of oxdiagk failed with status -50352\n";

// Asks the tunnel for a handle of the trace stream, as a program would; 0 when nobody answers.
u32 acquireThroughTunnel() {
  struct {
    nOXDIAG100::tTunnelHeader header;
    nOXDIAG100::tTunnelRecord record;
  } request = {};
  char name[] = "trace";
  u32 handle = 0;
  request.header.count = 1;
  request.record = {nOXDIAG100::kTunnelAcquire, 0, reinterpret_cast<u64>(&handle),
                    reinterpret_cast<u64>(name), 5};
  i32 status = 0;
  iLib::deliver(kTunnelName, sizeof(kTunnelName) - 1, reinterpret_cast<u64>(&request), status);
  EXPECT_EQ(status, handle != 0 ? 0 : kStatusNoDispatcher);
  return handle;
}

bool isLifeEvent(std::string const& text, std::string const& turn) {
  std::string const pattern = "oxdiagk\\.dll " + turn +
                              ": [0-9.]+[dabf][0-9]+ [-0-9]+ [:0-9]+ oxdiagk/linux/x86_64/[^ ]+, "
                              "ssMain at [0-9A-Fa-fx]+";
  return !partsOf(text, pattern).empty();
}

class ModuleLife : public testing::Test {
 protected:
  tPlatform platform;
  tImage image;
};

}  // namespace

TEST_F(ModuleLife, TheTunnelIsServedFromLoadToUnload) {
  EXPECT_EQ(acquireThroughTunnel(), 0u);
  ASSERT_EQ(image.initialise(), STATUS_SUCCESS);
  EXPECT_NE(acquireThroughTunnel(), 0u);
  EXPECT_EQ(image.unload(), STATUS_SUCCESS);
  EXPECT_EQ(acquireThroughTunnel(), 0u);
}

TEST_F(ModuleLife, ASecondLoadIsRefusedAndTheFirstGoesOn) {
  ASSERT_EQ(image.initialise(), STATUS_SUCCESS);
  tCapturedPrint const print;
  EXPECT_EQ(image.initialise(), kUnableToLoad);
  EXPECT_EQ(print.text(), "vexk registration - oxdiagk was not registered, status -50005\n");
  EXPECT_EQ(platform.getEvents().back().level, kVexEventFailure);
  EXPECT_EQ(image.getOutcome(), kWhole);
  EXPECT_NE(acquireThroughTunnel(), 0u);
  EXPECT_EQ(image.unload(), STATUS_SUCCESS);
  EXPECT_TRUE(image.isGone());
}

TEST_F(ModuleLife, ASecondStartOnlyCountsAndTheLastStopDestroys) {
  ASSERT_EQ(image.initialise(), STATUS_SUCCESS);
  u32 const first = acquireThroughTunnel();
  u64 const blocks = ntoshost::outstandingBlocks();
  EXPECT_EQ(image.callSSMain(0), 0);
  EXPECT_EQ(ntoshost::outstandingBlocks(), blocks);
  EXPECT_EQ(acquireThroughTunnel(), first + 1);
  EXPECT_EQ(image.callSSMain(1), 0);
  EXPECT_EQ(acquireThroughTunnel(), first + 2);
  EXPECT_NE(tPlatform::findLeftovers(), "");
  EXPECT_EQ(image.unload(), STATUS_SUCCESS);
  EXPECT_EQ(tPlatform::findLeftovers(), "");
}

TEST_F(ModuleLife, TheEntryDestroysTheHeapAndMakesItAgain) {
  ASSERT_EQ(image.initialise(), STATUS_SUCCESS);
  u64 const blocks = ntoshost::outstandingBlocks();
  EXPECT_EQ(image.callSSMain(1), 0);
  EXPECT_EQ(ntoshost::outstandingBlocks(), blocks - 4);  // record, arena, lock and its handle
  EXPECT_EQ(image.callSSMain(0), 0);
  EXPECT_EQ(ntoshost::outstandingBlocks(), blocks);
  EXPECT_EQ(image.getOutcome(), kWhole);
  EXPECT_EQ(image.unload(), STATUS_SUCCESS);
}

TEST_F(ModuleLife, TheTerminatorsRunOnce) {
  ASSERT_EQ(image.initialise(), STATUS_SUCCESS);
  EXPECT_EQ(image.unload(), STATUS_SUCCESS);
  EXPECT_TRUE(image.isGone());
  EXPECT_EQ(image.unload(), STATUS_SUCCESS);
  EXPECT_TRUE(image.isGone());
}

TEST_F(ModuleLife, ASecondLoadOfAnUnloadedImageBuildsNothing) {
  ASSERT_EQ(image.initialise(), STATUS_SUCCESS);
  EXPECT_EQ(image.unload(), STATUS_SUCCESS);
  EXPECT_EQ(image.initialise(), STATUS_SUCCESS);
  EXPECT_EQ(image.getOutcome(), kWithoutRegistry);
  EXPECT_EQ(acquireThroughTunnel(), 0u);
  EXPECT_EQ(image.unload(), STATUS_SUCCESS);
  EXPECT_TRUE(image.isGone());
}

TEST_F(ModuleLife, UnloadNeedsNoMemory) {
  ASSERT_EQ(image.initialise(), STATUS_SUCCESS);
  acquireThroughTunnel();
  ntoshost::failFrom(ntoshost::kFaultAll, 1);
  EXPECT_EQ(image.unload(), STATUS_SUCCESS);
  ntoshost::clearFaults();
  EXPECT_TRUE(image.isGone());
  EXPECT_EQ(ntoshost::outstandingBlocks(), 0u);
}

TEST_F(ModuleLife, OtherReasonsDoNothing) {
  ASSERT_EQ(image.initialise(), STATUS_SUCCESS);
  u64 const blocks = ntoshost::outstandingBlocks();
  for (u32 const reason : {2u, 3u, 4u, 5u, 6u, 17u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
    EXPECT_EQ(image.callSSMain(reason), 0);
    EXPECT_EQ(ntoshost::outstandingBlocks(), blocks);
  }
  EXPECT_EQ(image.getOutcome(), kWhole);
  EXPECT_EQ(image.unload(), STATUS_SUCCESS);
  EXPECT_TRUE(image.isGone());
}

TEST_F(ModuleLife, LoadAndUnloadAreEventsThatAreNotPrinted) {
  tCapturedPrint const print;
  image.initialise();
  image.unload();
  std::vector<tVexEvent> const events = platform.getEvents();
  ASSERT_EQ(events.size(), 2u);
  EXPECT_TRUE(isLifeEvent(events[0].text, "load")) << events[0].text;
  EXPECT_TRUE(isLifeEvent(events[1].text, "unload")) << events[1].text;
  for (tVexEvent const& event : events) EXPECT_EQ(event.level, kVexEventLife);
  EXPECT_EQ(print.text(), "");
}

TEST_F(ModuleLife, EventsArePrintedForWhoWantsThem) {
  tCapturedPrint const print;
  u32 const before = vexPrintEvents(kVexEventLife);
  image.initialise();
  vexPrintEvents(before);
  image.unload();
  ASSERT_EQ(print.prints.size(), 1u);
  EXPECT_EQ(print.prints[0], std::string(platform.getEvents()[0].text) + "\n");
}

TEST_F(ModuleLife, AFailedLoadIsToldOfAndWritesNoUnload) {
  tCapturedPrint const print;
  ntoshost::failNth(ntoshost::kFaultMemory, 30);
  EXPECT_EQ(image.initialise(), kUnableToLoad);
  ntoshost::clearFaults();
  std::vector<tVexEvent> const events = platform.getEvents();
  ASSERT_EQ(events.size(), 2u);
  EXPECT_TRUE(isLifeEvent(events[0].text, "load"));
  EXPECT_EQ(events[1].level, kVexEventFailure);
  EXPECT_EQ(std::string(events[1].text) + "\n", print.text());
  EXPECT_NE(print.text().find("oxdiagk failed with status -50352"), std::string::npos);
}

// An engineer looks for the printed line by the example.
TEST(FailedMain, AtLoadIsToldAsInTheExampleOfTheEventLog) {
  std::ifstream header(OXDIAG_SOURCE_DIR "/platform/vexk/include/vexk/eventLog.h");
  std::string const text{std::istreambuf_iterator<char>(header), {}};
  tPlatform const platform;
  std::string told;
  for (u64 n = 1; told.find("ssMain(0)") == std::string::npos && n < 100; ++n) {
    tImage const image;
    tCapturedPrint const print;
    ntoshost::failNth(ntoshost::kFaultMemory, n);
    image.initialise();
    ntoshost::clearFaults();
    image.unload();
    told = print.text();
  }
  ASSERT_NE(told, "");
  for (tVexEvent const& event : platform.getEvents()) {
    bool const isTold = std::string(event.text) + "\n" == told;
    EXPECT_TRUE(!isTold || event.level == kVexEventFailure) << event.level;
  }
  EXPECT_NE(text.find("\n//     " + told), std::string::npos) << told;
}

TEST_F(ModuleLife, AFailedMainOfAWrapperIsToldInWords) {
  ASSERT_EQ(image.initialise(), STATUS_SUCCESS);
  ASSERT_EQ(image.callSSMain(1), 0);
  tCapturedPrint const print;
  ntoshost::failNth(ntoshost::kFaultMemory, 1);
  EXPECT_EQ(image.callSSMain(0), kStatusOutOfMemory);
  ntoshost::clearFaults();
  EXPECT_EQ(print.text(), kFailedMain);
  std::vector<tVexEvent> const events = platform.getEvents();
  ASSERT_EQ(events.size(), 4u);
  EXPECT_TRUE(isLifeEvent(events[1].text, "unload"));
  EXPECT_TRUE(isLifeEvent(events[2].text, "load"));
  EXPECT_EQ(std::string(events[3].text) + "\n", kFailedMain);
  EXPECT_EQ(events[3].level, 10u);
  EXPECT_EQ(image.unload(), STATUS_SUCCESS);
  EXPECT_TRUE(image.isGone());
}

TEST_F(ModuleLife, AWrapperTellsEveryReason) {
  ASSERT_EQ(image.initialise(), STATUS_SUCCESS);
  for (u32 const reason : {2u, 3u, 4u, 0xFFFFFFFFu}) image.callSSMain(reason);
  std::vector<tVexEvent> const events = platform.getEvents();
  ASSERT_EQ(events.size(), 5u);
  EXPECT_TRUE(isLifeEvent(events[1].text, "open"));
  EXPECT_TRUE(isLifeEvent(events[2].text, "close"));
  EXPECT_TRUE(isLifeEvent(events[3].text, "reason 4"));
  EXPECT_TRUE(isLifeEvent(events[4].text, "reason 4294967295"));
  image.unload();
}

TEST_F(ModuleLife, ItIsNoDriver) {
  EXPECT_EQ(image.startAsDriver(), kUnableToLoad);
}

TEST_F(ModuleLife, AStopBeforeAnyStartDoesNothing) {
  EXPECT_EQ(image.callSSMain(1), 0);
  ASSERT_EQ(image.initialise(), STATUS_SUCCESS);
  EXPECT_EQ(image.getOutcome(), kWhole);
  EXPECT_EQ(image.unload(), STATUS_SUCCESS);
  EXPECT_TRUE(image.isGone());
}

TEST_F(ModuleLife, AStopBeforeAStartByAWrapperDoesNothing) {
  EXPECT_EQ(image.callSSMain(1), 0);
  EXPECT_EQ(image.callSSMain(0), 0);
  EXPECT_EQ(image.getOutcome(), kWhole);
  EXPECT_EQ(image.callSSMain(1), 0);
  EXPECT_TRUE(image.isGone());
}

TEST_F(ModuleLife, AStartWithoutMemoryIsRefusedAndLeavesNothing) {
  ntoshost::failFrom(ntoshost::kFaultMemory, 1);
  EXPECT_EQ(image.callSSMain(0), kStatusOutOfMemory);
  ntoshost::clearFaults();
  EXPECT_TRUE(image.isGone());
}
