// Every operation of every reportable with each of its allocations failing in turn, and with the
// status heap full.

#include <string>

#include "ntoshost/faults.h"
#include "oxdiagk/tStatus2Heap.h"
#include "qelmk/dynamicCast.h"
#include "support/heapRecord.h"
#include "support/reportableSamples.h"
#include "support/tItemStream.h"
#include "support/tTestConverter.h"
#include "support/tTestTranslator.h"
#include "trace/startedModules.h"

namespace {

using namespace nOXDIAG100;
using nQELM100::dynamicCast;
using nQELM100::iCloneable;
using nQELM100::tObject;

u64 failEachAllocation(auto operation) {
  return ntoshost::failEachCall(ntoshost::kFaultMemory, operation);
}

bool hasFault() {
  return ntoshost::faultsInjected() != 0;
}

template <class T>
bool isEquivalent(T const& one, T const& other) {
  tStatus2 status;
  return one.isEquivalent(other, status) == 1;
}

// The tag in the origin of a class' own failures.
template <class T>
std::string tagOf() {
  std::string name = tSample<T>::kName;
  name = name.substr(name.find("::") + 2);
  return "source/status/" + name.substr(0, name.find('<'));
}

void destroy(tObject* object) {
  i32 status = 0;
  object->getClass(status).deleteInstance(object, status);
}

// For a loop over all classes: no block more at the end than at the beginning.
class tBlockCount {
 public:
  ~tBlockCount() { EXPECT_EQ(ntoshost::outstandingBlocks(), before); }

 private:
  u64 before = ntoshost::outstandingBlocks();
};

}  // namespace

TEST(ReportableFaults, AListThatCannotBeTakenLeavesTheObjectEmpty) {
  tStatus2 ignored;
  _STL::vector<i32> const ids = listOf<i32>(1, 2);
  tBlockCount const blocks;
  u64 const failures = failEachAllocation([&](u64) {
    tStatus2 status;
    tPropertyIDReportable const properties(ids, status);
    EXPECT_EQ(status.getCode(), hasFault() ? kStatusOutOfMemory : 0);
    EXPECT_EQ(properties.getData(ignored).size(), hasFault() ? 0u : 2u);
    EXPECT_EQ(properties.hasFailed(), hasFault());
    if (!hasFault()) return;
    EXPECT_STREQ(status.getComponentName(), "oxdiagk");
    EXPECT_STREQ(status.getFileName(), "source/status/tPropertyIDReportable");
    EXPECT_NE(status.getLineNumber(), 0u);
  });
  EXPECT_EQ(failures, 1u);
}

TEST(ReportableFaults, AnObjectIsMadeWholeOrEmptyWithItsTagInTheStatus) {
  visitReportables([](auto tag) {
    using tReportable = typename decltype(tag)::tReportable;
    tBlockCount const blocks;
    u32 failures = 0;
    failEachAllocation([&](u64) {
      tStatus2 status;
      auto const reportable = tSample<tReportable>::one(status);
      bool const failed = status.isError();
      failures += failed ? 1 : 0;
      ntoshost::clearFaults();
      if (!failed) return;
      EXPECT_EQ(status.getCode(), kStatusOutOfMemory);
      EXPECT_EQ(status.getFileName(), tagOf<tReportable>());
      EXPECT_TRUE(isEquivalent(reportable, tReportable()));
    });
    bool const holdsList = tSample<tReportable>::kHasValues &&
                           tagOf<tReportable>() != "source/status/tBoundedRangeReportable";
    EXPECT_EQ(failures != 0, holdsList) << tSample<tReportable>::kName;
  });
}

TEST(ReportableFaults, OneValueNeedsNoMemory) {
  tBlockCount const blocks;
  u64 const failures = failEachAllocation([](u64) {
    tStatus2 status;
    tEnumPropertyReportable const property(7, 3, status);
    tEnumPropertyReportable const copy(property);
    EXPECT_EQ(status.getCode(), 0);
    EXPECT_EQ(copy.getPropertyID(status), 7);
    EXPECT_EQ(copy.getPropertyValues(status).size(), 1u);
  });
  EXPECT_EQ(failures, 0u);
}

TEST(ReportableFaults, TwoValuesAreTakenOrNot) {
  tBlockCount const blocks;
  _STL::vector<i32> const values = listOf<i32>(3, 4);
  u64 const failures = failEachAllocation([&](u64) {
    tStatus2 status;
    tEnumPropertyReportable const property(7, values, status);
    EXPECT_EQ(status.getCode(), hasFault() ? kStatusOutOfMemory : 0);
    EXPECT_EQ(property.getPropertyID(status), hasFault() ? 0 : 7);
    EXPECT_EQ(property.getPropertyValues(status).size(), hasFault() ? 0u : 2u);
  });
  EXPECT_EQ(failures, 1u);
}

TEST(ReportableFaults, AProxyIsTakenWholeOrNotAtAll) {
  tBlockCount const blocks;
  u64 const failures = failEachAllocation([](u64) {
    tStatus2 status;
    tStringProxyReportable const proxy(3, "nRACK::tTextsOfTheWholeRack", status);
    EXPECT_EQ(status.getCode(), hasFault() ? kStatusOutOfMemory : 0);
    EXPECT_EQ(proxy.getStringIDs(status).size(), hasFault() ? 0u : 1u);
    EXPECT_EQ(proxy.getLookupClassName(status).empty(), hasFault());
  });
  EXPECT_EQ(failures, 2u);  // the name for the constructor, the name
}

TEST(ReportableFaults, ACopyThatCannotBeMadeIsEmptyAndSaysSo) {
  visitReportables([](auto tag) {
    using tReportable = typename decltype(tag)::tReportable;
    auto const original = tag.one();
    tBlockCount const blocks;
    failEachAllocation([&](u64) {
      tReportable const copy = original;
      ntoshost::clearFaults();
      EXPECT_EQ(copy.hasFailed(), hasFault());
      EXPECT_TRUE(isEquivalent(copy, hasFault() ? tReportable() : tag.one()));
    });
  });
}

TEST(ReportableFaults, AnAssignmentThatCannotBeMadeKeepsTheOldValues) {
  visitReportables([](auto tag) {
    auto const original = tag.one();
    tBlockCount const blocks;
    for (u64 n = 1;; ++n) {
      auto target = tag.other();
      ntoshost::failNth(ntoshost::kFaultMemory, n);
      target = original;
      ntoshost::clearFaults();
      EXPECT_EQ(target.hasFailed(), hasFault());
      EXPECT_TRUE(isEquivalent(target, hasFault() ? tag.other() : tag.one()));
      if (!hasFault()) break;
    }
  });
}

TEST(ReportableFaults, ACloneIsMadeWholeOrNotAtAll) {
  visitReportables([](auto tag) {
    using tReportable = typename decltype(tag)::tReportable;
    auto const original = tag.one();
    tBlockCount const blocks;
    u64 const failures = failEachAllocation([&](u64 n) {
      i32 status = 0;
      iCloneable* const clone = original.clone(status);
      // The first allocation is the object's own: without it there is nothing of the class.
      i32 const reason = n == 1 ? nQELM100::kStatusClassMismatch : kStatusOutOfMemory;
      EXPECT_EQ(status, hasFault() ? reason : 0);
      ASSERT_EQ(clone == nullptr, hasFault());
      if (clone == nullptr) return;
      EXPECT_TRUE(isEquivalent(*dynamicCast<tReportable>(clone), original));
      destroy(clone);
    });
    EXPECT_GE(failures, 1u);
  });
}

TEST(ReportableFaults, AReadThatRunsOutOfMemoryKeepsTheOldValues) {
  visitReportables([](auto tag) {
    tItemStream& stream = cleanStream();
    i32 written = 0;
    tag.one().writeExternal(stream, written);
    tBlockCount const blocks;
    for (u64 n = 1;; ++n) {
      stream.rewind();
      auto target = tag.other();
      i32 status = 0;
      ntoshost::failNth(ntoshost::kFaultMemory, n);
      target.readExternal(stream, status);
      ntoshost::clearFaults();
      EXPECT_EQ(status, hasFault() ? kStatusOutOfMemory : 0);
      EXPECT_TRUE(isEquivalent(target, hasFault() ? tag.other() : tag.one()));
      if (!hasFault()) break;
    }
  });
}

TEST(ReportableFaults, AWrittenFormNeedsNoMemory) {
  visitReportables([](auto tag) {
    auto const original = tag.one();
    tItemStream& stream = cleanStream();
    i32 status = 0;
    EXPECT_EQ(failEachAllocation([&](u64) { original.writeExternal(stream, status); }), 0u);
  });
}

TEST(ReportableFaults, AComparisonNeedsNoMemory) {
  visitReportables([](auto tag) {
    auto const one = tag.one();
    auto const same = tag.one();
    EXPECT_EQ(failEachAllocation([&](u64) { EXPECT_TRUE(isEquivalent(one, same)); }), 0u);
  });
}

TEST(ReportableFaults, AReportThatCannotGrowSaysSo) {
  tRegistration<tTestConverter> const registration;
  visitReportables([](auto tag) {
    using tReportable = typename decltype(tag)::tReportable;
    auto const original = tag.one();
    tBlockCount const blocks;
    failEachAllocation([&](u64) {
      tFullTranslator const translator;
      _STL::wstring output;
      tStatus2 status;
      original.generateReport(translator, output, status);
      if (!hasFault()) return;
      EXPECT_EQ(status.getCode(), kStatusOutOfMemory) << tSample<tReportable>::kName;
      EXPECT_EQ(status.getFileName(), tagOf<tReportable>());
      EXPECT_EQ(translator.callsAfterError, 0u);
    });
  });
}

TEST(ReportableFaults, AReportThroughAConverterSaysWhatFailedAndLeavesNone) {
  tRegistration<tTestConverter> const registration;
  tStatus2 ignored;
  tStringProxyReportable const proxy(listOf<i32>(1, 2), tTestConverter::kName, ignored);
  tBlockCount const blocks;
  u64 const failures = failEachAllocation([&](u64) {
    tFullTranslator const translator;
    _STL::wstring output;
    tStatus2 status;
    proxy.generateReport(translator, output, status);
    EXPECT_EQ(status.getCode(), hasFault() ? kStatusOutOfMemory : 0);
    EXPECT_EQ(tTestConverter::living, 0);
  });
  EXPECT_GE(failures, 6u);
}

TEST(ReportableFaults, AFullStatusHeapKeepsTheCodeOfAFailure) {
  tStatus2 ignored;
  tStringProxyReportable const proxy(1, "nTESTS::tNobody", ignored);
  _STL::vector<i32> const ids = listOf<i32>(5, 6);
  tFullHeap const full;
  tTestTranslator const translator;
  _STL::wstring output;
  tStatus2 unknown;
  proxy.generateReport(translator, output, unknown);
  EXPECT_EQ(unknown.getCode(), nQELM100::kStatusClassUnknown);
  EXPECT_FALSE(unknown.hasDetail());
  ntoshost::failNth(ntoshost::kFaultMemory, 1);
  tStatus2 status;
  tPropertyIDReportable const properties(ids, status);
  ntoshost::clearFaults();
  EXPECT_EQ(status.getCode(), kStatusOutOfMemory);
  EXPECT_FALSE(status.hasDetail());
}

TEST(ReportableFaults, AFailedOutputOfTheCallerIsNoFailureOfTheReport) {
  _STL::wstring output;
  ntoshost::failNth(ntoshost::kFaultMemory, 1);
  output.append(L"slot");
  ntoshost::clearFaults();
  ASSERT_TRUE(output.hasFailed());
  tTestTranslator const translator;
  tStatus2 status;
  tIntrinsicTypeReportable<u32>(12u, status).generateReport(translator, output, status);
  EXPECT_EQ(status.getCode(), 0);
  EXPECT_STREQ(tNarrowText(output).get(), "<[>u32 12");
}

TEST(ReportableFaults, ASingleValueIsNotTakenWithAnEarlierError) {
  tStatus2 ignored;
  tStatus2 status(-12345);
  tEnumPropertyReportable const property(7, 1, status);
  EXPECT_EQ(status.getCode(), -12345);
  EXPECT_EQ(property.getPropertyID(ignored), 0);
  EXPECT_TRUE(property.getPropertyValues(ignored).empty());
}
