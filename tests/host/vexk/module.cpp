// Start and stop of the platform layer. This program starts with the layer at rest.

#include "vexk/module.h"

#include <gtest/gtest.h>

#include <string>

#include "ntos/status.h"
#include "ntoshost/executive.h"
#include "vexk/iLib.h"
#include "vexk/memory.h"
#include "vexk/moduleInfo.h"
#include "vexk/number.h"
#include "vexk/statusCodes.h"
#include "vexk/sync.h"

namespace {

void appendTo(void* context, char const* text, size_t length) {
  static_cast<std::string*>(context)->append(text, length);
}

// What stopping the layer prints.
std::string printOfUnload() {
  std::string text;
  ntoshost::setDebugPrintSink(&appendTo, &text);
  vexkUnload();
  ntoshost::setDebugPrintSink(nullptr, nullptr);
  return text;
}

// A module that counts the calls of its entry.
struct tEnteredModule {
  static i32 enter(u32 /*reason*/) {
    ++entries;
    return 0;
  }

  static u32 entries;
  tModulePackage package = {};
  _tLibModuleInfo info = {&package, "entered", &enter, 0};
};
u32 tEnteredModule::entries = 0;

}  // namespace

TEST(VexkHostModule, NoModuleIsUnregisteredBeforeTheFirstStart) {
  tEnteredModule module;
  i32 status = 0;
  libUnregisterModuleWithVEX(module.info, status);
  EXPECT_EQ(kStatusBadArgument, status);
  EXPECT_EQ(0u, tEnteredModule::entries);
}

TEST(VexkHostModule, IsAtRestUntilItIsStarted) {
  EXPECT_EQ(0u, pkgIsVexkInitialized());
  EXPECT_EQ(STATUS_SUCCESS, vexkInitialize());
  EXPECT_EQ(1u, pkgIsVexkInitialized());
  EXPECT_EQ(STATUS_SUCCESS, vexkUnload());
  EXPECT_EQ(0u, pkgIsVexkInitialized());
}

TEST(VexkHostModule, OpensNoLockAtRest) {
  i32 status = 0;
  EXPECT_EQ(nullptr, syncOpen(nullptr, tSyncDescriptor{}, status));
  EXPECT_EQ(kStatusNotInitialized, status);
  status = 0;
  EXPECT_EQ(nullptr, syncOpen("name", tSyncDescriptor{}, status));
  EXPECT_EQ(kStatusNotInitialized, status);
}

TEST(VexkHostModule, GivesMemoryAndNumbersAtRest) {
  i32 status = 0;
  void* block = _memNewUsingCRT(16, kMemScratch, status);
  EXPECT_NE(nullptr, block);
  _memDelete(block);
  char text[kNumberTextSize];
  EXPECT_EQ(2u, vexNumberToText(42, 10, text));
}

TEST(VexkHostModule, StartsAreCounted) {
  vexkInitialize();
  vexkInitialize();
  vexkUnload();
  EXPECT_EQ(1u, pkgIsVexkInitialized());
  vexkUnload();
  EXPECT_EQ(0u, pkgIsVexkInitialized());
}

TEST(VexkHostModule, AStopWithoutStartDoesNothing) {
  EXPECT_EQ(STATUS_SUCCESS, vexkUnload());
  EXPECT_EQ(0u, pkgIsVexkInitialized());
  vexkInitialize();
  EXPECT_EQ(1u, pkgIsVexkInitialized());
  vexkUnload();
}

TEST(VexkHostModule, ACleanStopPrintsNothing) {
  vexkInitialize();
  i32 status = 0;
  iSync* sync = syncOpen("name", tSyncDescriptor{}, status);
  EXPECT_EQ(0, syncClose(sync));
  EXPECT_EQ("", printOfUnload());
}

TEST(VexkHostModule, AStopTellsHowManyLocksAreOpen) {
  vexkInitialize();
  i32 status = 0;
  iSync* first = syncOpen("name", tSyncDescriptor{}, status);
  iSync* second = syncOpen(nullptr, tSyncDescriptor{}, status);
  EXPECT_EQ("[vexk] 2 locks are still open at unload\n", printOfUnload());
  EXPECT_EQ(0, syncClose(first));
  EXPECT_EQ(0, syncClose(second));
  EXPECT_EQ(0u, ntoshost::outstandingBlocks());
}

TEST(VexkHostModule, OnlyTheLastStopLooksForWhatIsOpen) {
  vexkInitialize();
  vexkInitialize();
  i32 status = 0;
  iSync* sync = syncOpen("name", tSyncDescriptor{}, status);
  EXPECT_EQ("", printOfUnload());
  EXPECT_EQ(0, syncClose(sync));
  EXPECT_EQ("", printOfUnload());
}

// A start while the table of locks is held, which takes memory for a new one.
TEST(VexkHostModule, ASecondStartDisturbsNobodyWithin) {
  vexkInitialize();
  ntoshost::visitFallibleCalls([](void*, u32) { vexkInitialize(); }, nullptr);
  i32 status = 0;
  iSync* sync = syncOpen("name", tSyncDescriptor{}, status);
  ntoshost::visitFallibleCalls(nullptr, nullptr);
  EXPECT_EQ(0, status);
  EXPECT_EQ(0, syncClose(sync));
  while (pkgIsVexkInitialized() != 0) vexkUnload();
}

TEST(VexkHostModule, ALockThatSurvivesAStopIsFoundAfterTheNextStart) {
  vexkInitialize();
  i32 status = 0;
  iSync* survivor = syncOpen("name", tSyncDescriptor{}, status);
  (void)printOfUnload();
  vexkInitialize();
  iSync* again = syncOpen("name", tSyncDescriptor{}, status);
  ASSERT_NE(nullptr, again);
  EXPECT_EQ(0, survivor->acquire(0));
  EXPECT_EQ(0, again->release());
  EXPECT_EQ(0, syncClose(again));
  EXPECT_EQ(0, syncClose(survivor));
  EXPECT_EQ("", printOfUnload());
}

namespace {

i32 enterTestModule(u32 /*reason*/) {
  return 0;
}

constinit tModulePackage testPackage = {};
constinit _tLibModuleInfo testModule = {&testPackage, "test", &enterTestModule, 0};

}  // namespace

TEST(VexkHostModule, RegistersNoModuleAtRest) {
  i32 status = 0;
  libRegisterModuleWithVEX(testModule, status);
  EXPECT_EQ(kStatusNotInitialized, status);
  status = 0;
  libUnregisterModuleWithVEX(testModule, status);
  EXPECT_EQ(kStatusBadArgument, status);
  status = kStatusOutOfMemory;
  libUnregisterModuleWithVEX(testModule, status);
  EXPECT_EQ(kStatusOutOfMemory, status);
}

TEST(VexkHostModule, ExportsAndReachesNoDispatcherAtRest) {
  class tSilent : public iLib::iDispatcher {
   public:
    tSilent() : iDispatcher("silent") {}
    void dispatch(u64 /*request*/) override {}
  };
  tSilent silent;
  i32 status = 0;
  iLib::exportDispatcher(silent, status);
  EXPECT_EQ(kStatusNotInitialized, status);
  status = 0;
  iLib::unexportDispatcher(silent, status);
  EXPECT_EQ(kStatusNotInitialized, status);
  status = 0;
  iLib::deliver("silent", 6, 0, status);
  EXPECT_EQ(kStatusNotInitialized, status);
  status = kStatusOutOfMemory;
  iLib::exportDispatcher(silent, status);
  iLib::unexportDispatcher(silent, status);
  iLib::deliver("silent", 6, 0, status);
  EXPECT_EQ(kStatusOutOfMemory, status);
}

TEST(VexkHostModule, AModuleWithoutMemoryIsNotRegisteredAndSaysSo) {
  vexkInitialize();
  std::string text;
  ntoshost::setDebugPrintSink(&appendTo, &text);
  ntoshost::failNth(ntoshost::kFaultMemory, 1);
  i32 status = 0;
  libRegisterModuleWithVEX(testModule, status);
  ntoshost::clearFaults();
  ntoshost::setDebugPrintSink(nullptr, nullptr);
  EXPECT_EQ(kStatusOutOfMemory, status);
  EXPECT_EQ("vexk registration - test was not registered, status -50352\n", text);
  EXPECT_EQ("", printOfUnload());
}

TEST(VexkHostModule, AStopTellsHowManyModulesAreRegistered) {
  vexkInitialize();
  i32 status = 0;
  libRegisterModuleWithVEX(testModule, status);
  EXPECT_EQ("[vexk] 1 modules are still registered at unload\n", printOfUnload());
  libUnregisterModuleWithVEX(testModule, status);
  EXPECT_EQ(0, status);
  EXPECT_EQ(0u, ntoshost::outstandingBlocks());
}
