// docs/irql.md: each row is an operation that is called here at its highest level, and one above it
// where the executive can see that.

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>

#include "config/tConfigurationGuard.h"
#include "documents/tDocument.h"
#include "oxdiagk/assertion.h"
#include "oxdiagk/contractMacros.h"
#include "oxdiagk/instanceRegistry.h"
#include "oxdiagk/tAssertConfiguration.h"
#include "oxdiagk/tCTFTraceDestination.h"
#include "oxdiagk/tCategoryTable.h"
#include "oxdiagk/tFileTraceDestination.h"
#include "oxdiagk/tRecorderTraceDestination.h"
#include "oxdiagk/tStatus2Description.h"
#include "oxdiagk/tStatus2Heap.h"
#include "oxdiagk/tStatus2ModuleList.h"
#include "oxdiagk/tTitleReportable.h"
#include "oxdiagk/tTraceFilter.h"
#include "oxdiagk/tVEXTraceDestination.h"
#include "oxdiagk/tWideTextList.h"
#include "oxdiagk/version.h"
#include "qelmk/mergeStatus.h"
#include "qelmk/tBinaryObjectReader.h"
#include "qelmk/tBinaryObjectWriter.h"
#include "qelmk/tClass.h"
#include "qelmk/tGUID.h"
#include "stl/borrowed_string.h"
#include "stl/list.h"
#include "stl/map.h"
#include "stl/single_vector.h"
#include "stl/tree.h"
#include "trace/capturedPrint.h"
#include "trace/keptLines.h"
#include "trace/startedModules.h"
#include "trace/tRaisedIrql.h"
#include "vexk/callStack.h"
#include "vexk/debug.h"
#include "vexk/eventLog.h"
#include "vexk/iLib.h"
#include "vexk/loadedModule.h"
#include "vexk/memory.h"
#include "vexk/module.h"
#include "vexk/number.h"
#include "vexk/serialSupport.h"
#include "vexk/sync.h"
#include "vexk/tSSTimeAbsolute.h"
#include "vexk/threadUtility.h"
#include "vexk/timerTimebase.h"
#include "vexk/userMemory.h"

#define OXDIAG_COMPONENT "test"
#define OXDIAG_COMPONENT_VERSION tSSVersion(1, 0, 0, tSSVersion::kPhaseReleased, 0, 0)
#include "oxdiagk/statusMacros.h"

using namespace nOXDIAG100;

namespace {

constexpr i32 kError = -61007;

struct tRow {
  std::string level;
  std::function<void()> call;
  bool isWatched;  // the executive complains one level above
};

// What the operations work on; made at PASSIVE_LEVEL.
struct tObjects {
  tOwnTrace trace{tVEXTraceDestination::getInstance()};
  tTraceFilter filter;
  tStatus2 plain{-1};
  tLineLimit limit;
  tConfigurationLock lock;
  tCategoryTable<u32> categories{1};
  tTitleReportable title;
  tOpenPorts ports;
  u8 bytes[64] = {};
  char text[64] = {};
};

void writeNumber(u8* bytes, size_t size) {
  i32 status = 0;
  nQELM100::tBinaryObjectWriter writer(bytes, size);
  writer.writeI32(1, status);
}

void writeObject(u8* bytes, size_t size) {
  i32 status = 0;
  tTitleReportable const title;
  nQELM100::tBinaryObjectWriter writer(bytes, size);
  writer.writeObject(&title, status);
}

void cloneAndDestroy(tTitleReportable const& title) {
  i32 status = 0;
  nQELM100::iCloneable* const copy = title.clone(status);
  title.getClass(status).deleteInstance(copy, status);
}

void takeFromPool() {
  i32 status = 0;
  tStatus2Heap* const heap = tStatus2Heap::getHeap(status);
  void* const block = heap->allocateMemoryBlock(240, status);
  if (block != nullptr) heap->releaseMemoryBlock(block, status);
}

// Of all kinds, in memory of one kind.
template <u32 kFlags>
void growContainers() {
  _STL::basic_string<wchar_t, kFlags> text;
  text.append(L"a text that is too long to lie in the string itself");
  _STL::vector<u32, kFlags> vector;
  vector.push_back(1);
  _STL::single_vector<u32, kFlags> single;
  single.push_back(1);
  single.push_back(2);
  _STL::list<u32, kFlags> list;
  list.push_back(1);
  _STL::map<u32, u32, _STL::less<u32>, kFlags> map;
  map.insert(1, 1);
  tWideTextList texts;
  if (kFlags != 0) texts.push_back(_STL::wstring(L"text"));
}

void openAndReleasePorts() {
  tOpenPorts const ports;
}

void setDetail() {
  tStatus2 status;
  OXDIAG_SET_STATUS(status, kError);
  tStatus2 const copy(status);
}

void describe() {
  tStatus2Description description;
}

void openAndClose() {
  i32 status = 0;
  iSync* sync = syncOpen(nullptr, tSyncDescriptor{}, status);
  if (sync->acquire(kSyncWaitForever) == 0) sync->release();
  syncClose(sync);
}

void takeAndGive(u32 flags) {
  i32 status = 0;
  void* const block = _memNewUsingCRT(16, static_cast<tMemAllocationFlags>(flags), status);
  if (block != nullptr) _memDelete(block);
}

// Operation, as the first cell of its row -> how it is called.
std::map<std::string, tRow> rowsOf(tObjects& on) {
  char const* const any = "any";
  return {
      {"lines to the debugger print, the serial port, the recorder, a capture",
       {any, [&] { on.trace.put("line").endl(); }, false}},
      {"lines to a file", {any, [] { tFileTraceDestination::getInstance()->put("x"); }, false}},
      {"limits of lines",
       {any,
        [&] {
          u32 leftOut = 0;
          on.limit.admit(tLineLimit::kAtMostASecond, 5, leftOut);
        },
        false}},
      {"enable, disable, the plain switches of tTrace and all queries",
       {any,
        [&] {
          on.trace.disable();
          on.trace.enable();
          on.trace.enableTimeStamp();
          static_cast<void>(on.trace.getNestingLevel());
        },
        false}},
      {"enableMutex, disableMutex, calibrate",
       {"APC_LEVEL",
        [&] {
          on.trace.enableMutex();
          on.trace.disableMutex();
        },
        true}},
      {"configure, inquire, pushConfiguration, popConfiguration, setDestination",
       {"PASSIVE_LEVEL",
        [&] {
          on.trace.configure("--destination file C:/irql.out");
          on.trace.configure("--destination vex");
          tAssertConfiguration::getInstance().configure("--category irql");
        },
        true}},
      {"destinations: making, opening, closing, destroying",
       {"PASSIVE_LEVEL",
        [&] {
          i32 position = 0;
          tCTFTraceDestination const capture(on.text, position, sizeof(on.text), nullptr);
          tFileTraceDestination file;
          file.open();
          file.close();
        },
        true}},
      {"the lock that they take",
       {"APC_LEVEL", [&] { tConfigurationGuard const guard(on.lock); }, true}},
      {"tTraceFilter: evaluating", {any, [&] { static_cast<void>(on.filter.isEmpty()); }, false}},
      {"tTraceFilter: changing",
       {"DISPATCH_LEVEL", [&] { on.filter.parseExpression("verbosity<5"); }, true}},
      {"a contract that holds, or is switched off", {any, [] { OXDIAG_REQUIRE(true); }, false}},
      {"the evaluations of oxdiagk/assertion.h, continuationAction",
       {any,
        [&] {
          evalCheck(on.text, on.text, tSSVersion(), 1, on.text);
          continuationAction(on.text, on.text, tSSVersion(), 1, on.text);
        },
        false}},
      {"a table of categories: finding",
       {any, [&] { static_cast<void>(on.categories.find("disk")); }, false}},
      {"the switches and queries of tAssertConfiguration",
       {any,
        [] {
          tAssertConfiguration& contracts = tAssertConfiguration::getInstance();
          static_cast<void>(contracts.checksAreEnabled("default"));
          contracts.enableChecks("default");
        },
        false}},
      {"tStatus2 without detail: everything", {any, [&] { tStatus2 const copy(on.plain); }, false}},
      {"tStatus2 with detail: setting, copying, destroying", {"APC_LEVEL", setDetail, false}},
      {"tStatus2::toString, put of a status",
       {any, [&] { on.plain.toString(on.text, sizeof(on.text)); }, false}},
      {"tStatus2Description, reportables, translators, reports", {"APC_LEVEL", describe, false}},
      {"the pool of the statuses: taking and giving back", {"APC_LEVEL", takeFromPool, false}},
      {"the pool of the statuses: finding it, its counters",
       {any,
        [] {
          i32 status = 0;
          static_cast<void>(tStatus2Heap::getHeap(status)->getFreeUnits());
        },
        false}},
      {"the module at an address, a list of a status' modules",
       {"APC_LEVEL",
        [&] {
          tLoadedModule module;
          _vexFindModule(reinterpret_cast<u64>(&takeFromPool), &module);
          tStatus2ModuleList const modules(on.plain);
        },
        false}},
      {"tBinaryObjectReader, tBinaryObjectWriter: objects",
       {"APC_LEVEL", [&] { writeObject(on.bytes, sizeof(on.bytes)); }, false}},
      {"objects of classes: making, cloning, destroying",
       {"DISPATCH_LEVEL", [&] { cloneAndDestroy(on.title); }, true}},
      {"what is known of a class, casts, merging statuses",
       {any,
        [&] {
          i32 status = 0;
          static_cast<void>(on.title.getClass(status).getName());
          nQELM100::mergeStatus(status, kError);
        },
        false}},
      {"plain values: versions, times, GUIDs",
       {any,
        [] {
          char text[tSSVersion::kMaxTextSize];
          tSSVersion(1, 0, 0, tSSVersion::kPhaseReleased, 1, 0).toString(text);
          static_cast<void>(tSSTimeAbsolute::now());
          static_cast<void>(nQELM100::tGUID() == nQELM100::tGUID());
        },
        false}},
      {"memory: kMemScratch", {"APC_LEVEL", [] { takeAndGive(kMemScratch); }, true}},
      {"containers of _STL, lists of wide texts", {"DISPATCH_LEVEL", growContainers<4>, true}},
      {"containers of _STL in scratch memory", {"APC_LEVEL", growContainers<0>, true}},
      {"_STL: borrowed strings, trees, remembered failures, moving",
       {any,
        [&] {
          _STL::borrowed_string<char> const text(on.text, 0);
          static_cast<void>(text.get().hasFailed());
          static_cast<void>(_STL::tree().first());
        },
        false}},
      {"who runs: threads, the processor, whether a module is started",
       {any,
        [] {
          static_cast<void>(tThreadUtility::getCurrentThreadId());
          static_cast<void>(pkgIsVexkInitialized());
        },
        false}},
      {"iBus: bytes of ports", {any, [&] { on.ports.write(kComData, 'x'); }, false}},
      {"iBus: making, opening, releasing", {"PASSIVE_LEVEL", openAndReleasePorts, false}},
      {"tBinaryObjectReader, tBinaryObjectWriter: numbers and texts",
       {"DISPATCH_LEVEL", [&] { writeNumber(on.bytes, sizeof(on.bytes)); }, false}},
      {"the class registry: registering, finding",
       {"APC_LEVEL",
        [] {
          i32 status = 0;
          nQELM100::tClass::forName("nOXDIAG100::tTitleReportable", status);
        },
        true}},
      {"compareVersion, getCurrentVersion, vexCompareVersion",
       {any,
        [] {
          i32 status = 0;
          static_cast<void>(getCurrentVersion(status));
        },
        false}},
      {"memory: VEX_MODULE_MEMORY, kMemLongLived",
       {"DISPATCH_LEVEL", [] { takeAndGive(kMemLongLived); }, true}},
      {"iSync::acquire, iSync::release, syncOpen, syncClose", {"APC_LEVEL", openAndClose, true}},
      {"_vexLogEvent, vexReadEvent, vexPrintEvents",
       {any,
        [] {
          tVexEvent event = {};
          vexReadEvent(1, event);
        },
        false}},
      {"vexCopyFromUser, vexCopyToUser",
       {"PASSIVE_LEVEL", [&] { static_cast<void>(vexCopyFromUser(on.bytes, 0, 1)); }, false}},
      {"a tTrace of one's own: constructor, destructor",
       {"PASSIVE_LEVEL", [] { tOwnTrace const own(tVEXTraceDestination::getInstance()); }, false}},
      {"the instance registry (oxdiagk/instanceRegistry.h)",
       {"PASSIVE_LEVEL", [] { releaseInstance(acquireInstance(nullptr)); }, false}},
      {"ssprintf", {any, [] { ssprintf("%d\n", 5); }, false}},
      {"call stacks, the time base, numbers as text",
       {any,
        [] {
          u64 addresses[4];
          _vexGetCallStack(4, 0, addresses);
          char text[80];
          vexNumberToText(5, 10, text);
        },
        false}},
  };
}

// Rows of what takes a device or a module; the named programs call them.
std::map<std::string, char const*> const kElsewhere = {
    {"registering a module, iLib", "vexk.module"},
    {"starting and stopping the library and what is beneath it", "package.moduleLoad"},
    {"vexAddFunctionDevice, iChildBus", "vexk.functionDevice"},
    {"vexDispatch, vexDispatchPower", "conformance_tests, VexkDispatch"},
    {"the handlers of a driver: device controls", "conformance_tests, ChildControl"},
};

// The rows of the table, without backquotes; those whose level is that of something else are left
// out.
std::map<std::string, std::string> levelsInDocument() {
  std::map<std::string, std::string> levels;
  tDocument const page("docs/irql.md");
  for (tDocument::tRow const& row : page.getRows()) {
    std::string operation = row.cells.at(0);
    std::erase(operation, '`');
    std::string level = row.cells.at(1);
    if (level.starts_with("called up to ")) level.erase(0, 13);
    if (level == "any" || level.ends_with("_LEVEL")) levels[operation] = level;
  }
  return levels;
}

KIRQL levelOf(std::string const& name) {
  if (name == "PASSIVE_LEVEL") return PASSIVE_LEVEL;
  if (name == "APC_LEVEL") return APC_LEVEL;
  return name == "DISPATCH_LEVEL" ? DISPATCH_LEVEL : HIGH_LEVEL;
}

void callAt(KIRQL level, std::function<void()> const& call) {
  tRaisedIrql const raised(level);
  call();
}

class IrqlTable : public testing::Test {
 protected:
  tCapturedPrint print;
  tObjects objects;
  std::map<std::string, tRow> const rows = rowsOf(objects);
};

using IrqlTableDeathTest = IrqlTable;

}  // namespace

TEST_F(IrqlTable, EachRowIsCalledAndEachCallHasARow) {
  std::map<std::string, std::string> const levels = levelsInDocument();
  for (auto const& [operation, level] : levels) {
    if (kElsewhere.contains(operation)) continue;
    ASSERT_TRUE(rows.contains(operation)) << operation;
    EXPECT_EQ(rows.at(operation).level, level) << operation;
  }
  EXPECT_EQ(levels.size(), rows.size() + kElsewhere.size());
}

TEST_F(IrqlTable, AtItsHighestLevelEachIsTakenWithoutAComplaint) {
  for (auto const& [operation, row] : rows) {
    SCOPED_TRACE(operation);
    KIRQL const level = levelOf(row.level);
    callAt(level, row.call);
    EXPECT_EQ(KeGetCurrentIrql(), PASSIVE_LEVEL);
  }
}

TEST_F(IrqlTableDeathTest, OneLevelAboveTheExecutiveComplains) {
  int watched = 0;
  for (auto const& [operation, row] : rows) {
    if (!row.isWatched) continue;
    ++watched;
    KIRQL const above = static_cast<KIRQL>(levelOf(row.level) + 1);
    EXPECT_DEATH(callAt(above, row.call), "it may be called up to IRQL") << operation;
  }
  EXPECT_GE(watched, 5);
}
