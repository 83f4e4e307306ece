// Descriptions for which the status heap has no room.

#include "conformance/harness.h"
#include "oxdiagk/statusCodes.h"
#include "oxdiagk/tStatus2.h"
#include "oxdiagk/tStatus2Description.h"
#include "qelmk/dynamicCast.h"
#include "qelmk/statusCodes.h"
#include "status/tStatus2DescriptionImplementation.h"
#include "support/callerCodes.h"
#include "support/heapRecord.h"
#include "support/statusOrigin.h"
#include "support/tItemStream.h"
#include "support/tItemTranslator.h"
#include "support/tTestReportable.h"
#include "vexk/placementNew.h"

using nOXDIAG100::kStatusNoImplementation;
using nOXDIAG100::tStatus2;
using nOXDIAG100::tStatus2Description;
using nOXDIAG100::tStatus2DescriptionImplementation;
using nQELM100::kStatusClassMismatch;

namespace {

constexpr u32 kUntouched = 4711;

constexpr u32 unitsOf(size_t size) {
  return static_cast<u32>((size + 15) / 16);
}

// Room for a description is none for what is behind it.
static_assert(unitsOf(sizeof(tStatus2Description)) <
              unitsOf(sizeof(tStatus2DescriptionImplementation)));

// A description that was made in a full heap; the heap is free again.
class tListless {
 public:
  static tListless make() {
    tFullHeap const full;
    return tListless();
  }

  tStatus2Description description;

 private:
  tListless() = default;
};

void expectNoImplementation(tStatus2& status) {
  EXPECT_EQ(status.getCode(), kStatusNoImplementation);
  EXPECT_STREQ(status.getComponentName(), "oxdiagk");
  EXPECT_STREQ(status.getFileName(), "source/status/tStatus2Description");
  status.setCode(0);
}

// A heap in which only blocks of the given sizes are free, for the length of a test.
class tNarrowHeap {
 public:
  explicit tNarrowHeap(size_t first, size_t second = 0) {
    void* const firstBlock = takeBlock(static_cast<i32>(first));
    // Keeps the two apart.
    wall = takeBlock(0);
    void* const secondBlock = second != 0 ? takeBlock(static_cast<i32>(second)) : nullptr;
    new (&full) tFullHeap;
    giveBack(firstBlock);
    if (secondBlock != nullptr) giveBack(secondBlock);
  }
  ~tNarrowHeap() {
    full.giveAllBack();
    giveBack(wall);
  }
  tNarrowHeap(tNarrowHeap const&) = delete;
  tNarrowHeap& operator=(tNarrowHeap const&) = delete;

 private:
  void* wall;
  union {
    tFullHeap full;
  };
};

}  // namespace

TEST(DescriptionInFullHeap, RecordsOutOfMemoryOnConstruction) {
  tFullHeap const full;
  tStatus2 status;
  tStatus2Description const description(status);
  EXPECT_EQ(status.getCode(), kStatusOutOfMemory);
}

TEST(DescriptionInFullHeap, SaysWhereInThePlaceOfAWarning) {
  tStatus2 status;
  {
    tOrigin const origin("slotbus", "rack.cpp");
    OXDIAG_SET_STATUS(status, kEarlierWarning);
  }
  tFullHeap const full;
  tStatus2Description const description(status);
  EXPECT_EQ(status.getCode(), kStatusOutOfMemory);
  EXPECT_STREQ(status.getComponentName(), "oxdiagk");
  EXPECT_STREQ(status.getFileName(), "source/status/tStatus2Description");
}

TEST(DescriptionInFullHeap, IsConstructedWithoutAListAfterAnEarlierError) {
  tStatus2 status(kEarlierError);
  tStatus2Description const description(status);
  EXPECT_EQ(status.getCode(), kEarlierError);
  tStatus2 asking;
  EXPECT_EQ(description.getNumberOfReportItems(asking), u32{0});
  expectNoImplementation(asking);
}

TEST(DescriptionInFullHeap, IsNullWhenThereIsNoRoomForItself) {
  tFullHeap const full;
  EXPECT_TRUE(new tStatus2Description == nullptr);
}

TEST(DescriptionWithoutList, ChangesNothingAndSaysSo) {
  tListless listless = tListless::make();
  tStatus2Description& description = listless.description;
  tTestReportable const value(1);
  tStatus2 status;
  description.addReportItem(10, value, status);
  expectNoImplementation(status);
  description.addHeader(10, status);
  expectNoImplementation(status);
  description.addNewline(status);
  expectNoImplementation(status);
  description.insertReportItemAtIndex(0, 10, value, status);
  expectNoImplementation(status);
  description.removeReportItemAtIndex(0, status);
  expectNoImplementation(status);
  description.replaceReportItemAtIndex(0, 10, value, status);
  expectNoImplementation(status);
  description.makeEmpty(status);
  expectNoImplementation(status);
}

TEST(DescriptionWithoutList, TellsNothingAndSaysSo) {
  tListless const listless = tListless::make();
  tStatus2Description const& description = listless.description;
  tStatus2 status;
  _STL::string name("old");
  EXPECT_EQ(description.getNumberOfReportItems(status), u32{0});
  expectNoImplementation(status);
  EXPECT_EQ(description.getUsageTypeAtIndex(0, status), -1);
  expectNoImplementation(status);
  EXPECT_TRUE(description.getReportablePtrAtIndex(0, status) == nullptr);
  expectNoImplementation(status);
  description.getReportableClassNameAtIndex(0, name, status);
  expectNoImplementation(status);
  EXPECT_STREQ(name.c_str(), "old");
}

TEST(DescriptionWithoutList, FindsNothingAndSaysSo) {
  tListless const listless = tListless::make();
  tStatus2Description const& description = listless.description;
  tStatus2 status;
  u32 index = kUntouched;
  EXPECT_EQ(description.findMatchingUsageType(10, index, status, 5), u32{0});
  expectNoImplementation(status);
  EXPECT_EQ(description.findMatchingReportable(nQELM100::tClass(), index, status, 5), u32{0});
  expectNoImplementation(status);
  EXPECT_EQ(description.findMatchingReportable(_STL::string("x"), index, status, 5), u32{0});
  expectNoImplementation(status);
  EXPECT_EQ(index, kUntouched);
}

TEST(DescriptionWithoutList, MakesNoReportAndSaysSo) {
  tListless const listless = tListless::make();
  tStatus2 status;
  _STL::wstring output(L"at: ");
  listless.description.generateReport(tItemTranslator(), output, status);
  expectNoImplementation(status);
  EXPECT_TRUE(output == L"at: ");
}

TEST(DescriptionWithoutList, KeepsAnErrorOnEntry) {
  tListless const listless = tListless::make();
  tStatus2 status(kEarlierError);
  EXPECT_EQ(listless.description.getNumberOfReportItems(status), u32{0});
  EXPECT_EQ(status.getCode(), kEarlierError);
}

TEST(DescriptionWithoutList, EqualsNoneNotEvenItself) {
  tListless const listless = tListless::make();
  tStatus2Description const empty;
  EXPECT_FALSE(listless.description == empty);
  EXPECT_FALSE(empty == listless.description);
  EXPECT_FALSE(listless.description == listless.description);
}

TEST(DescriptionWithoutList, IsNotCloned) {
  tListless const listless = tListless::make();
  i32 code = 0;
  EXPECT_TRUE(listless.description.clone(code) == nullptr);
  EXPECT_EQ(code, kStatusNoImplementation);
  EXPECT_TRUE(isHeapUnused());
}

TEST(DescriptionWithoutList, IsNotWritten) {
  tListless const listless = tListless::make();
  tItemStream& stream = cleanStream();
  i32 code = 0;
  listless.description.writeExternal(stream, code);
  EXPECT_EQ(code, kStatusNoImplementation);
  EXPECT_EQ(stream.getCount(), u32{0});
  code = kEarlierError;
  listless.description.writeExternal(stream, code);
  EXPECT_EQ(code, kEarlierError);
}

TEST(DescriptionWithoutList, IsNotReadWithAnotherCodeThanForWriting) {
  tListless listless = tListless::make();
  tItemStream& stream = cleanStream();
  stream.put({tItemStream::kU32, 0});
  i32 code = 0;
  listless.description.readExternal(stream, code);
  EXPECT_EQ(code, kStatusOutOfMemory);
  EXPECT_EQ(stream.getPosition(), u32{0});
  code = kEarlierError;
  listless.description.readExternal(stream, code);
  EXPECT_EQ(code, kEarlierError);
}

TEST(DescriptionWithoutList, IsNotAttachedToAStatus) {
  tListless const listless = tListless::make();
  tOrigin const origin("slotbus", "rack.cpp");
  tStatus2 status;
  OXDIAG_SET_STATUS_WITH_DESCRIPTION(status, kEarlierError, listless.description);
  EXPECT_EQ(status.getCode(), kEarlierError);
  EXPECT_TRUE(status.hasDetail());
  EXPECT_TRUE(status.getDescription() == nullptr);
}

TEST(DescriptionInFullHeap, StillTakesItems) {
  tStatus2Description description;
  tFullHeap const full;
  EXPECT_EQ(addItems(description, 100), 0);
}

TEST(DescriptionInFullHeap, KeepsTheCodeOfAFailureWithoutOrigin) {
  tStatus2Description const description;
  tFullHeap const full;
  tStatus2 status;
  EXPECT_EQ(description.getUsageTypeAtIndex(0, status), -1);
  EXPECT_EQ(status.getCode(), nOXDIAG100::kStatusIndexOutOfRange);
  EXPECT_FALSE(status.hasDetail());
}

TEST(DescriptionInFullHeap, IsNotClonedWithoutRoomForTheClone) {
  tStatus2Description description;
  addItems(description, 3);
  tFullHeap const full;
  i32 code = 0;
  EXPECT_TRUE(description.clone(code) == nullptr);
  EXPECT_EQ(code, kStatusClassMismatch);
}

TEST(DescriptionInFullHeap, IsNotClonedWithoutRoomForTheClonesList) {
  i32 const before = tTestReportable::living;
  tStatus2Description description;
  addItems(description, 3);
  {
    tNarrowHeap const narrow(sizeof(tStatus2Description));
    u32 const blocks = theHeap().getAllocatedBlocks();
    i32 code = 0;
    EXPECT_TRUE(description.clone(code) == nullptr);
    EXPECT_EQ(code, kStatusOutOfMemory);
    EXPECT_EQ(theHeap().getAllocatedBlocks(), blocks);
  }
  EXPECT_EQ(tTestReportable::living, before + 3);
  EXPECT_EQ(theHeap().getAllocatedBlocks(), u32{1});
}

TEST(DescriptionInFullHeap, IsClonedWithJustRoomForBoth) {
  tStatus2Description description;
  addItems(description, 3);
  // Each takes the place that it finds first.
  tNarrowHeap const narrow(sizeof(tStatus2DescriptionImplementation),
                           sizeof(tStatus2DescriptionImplementation));
  i32 code = 0;
  auto* const clone = nQELM100::dynamicCast<tStatus2Description>(description.clone(code));
  ASSERT_TRUE(clone != nullptr);
  EXPECT_EQ(numbersIn(*clone), 123);
  clone->getClass(code).deleteInstance(clone, code);
  EXPECT_EQ(code, 0);
}

TEST(DescriptionInFullHeap, TheImplementationIsNotClonedWithoutRoom) {
  tStatus2DescriptionImplementation const implementation;
  tFullHeap const full;
  i32 code = 0;
  EXPECT_TRUE(implementation.clone(code) == nullptr);
  EXPECT_EQ(code, kStatusClassMismatch);
}

TEST(DescriptionInFullHeap, AStatusKeepsItsDetailAndDoesWithoutDescription) {
  tStatus2Description description;
  addItems(description, 3);
  // Room for the detail of 240 bytes; then also for the description, but not for its list.
  constexpr size_t kSecondBlocks[] = {0, sizeof(tStatus2Description)};
  for (size_t second : kSecondBlocks) {
    tOrigin const origin("slotbus", "rack.cpp");
    tNarrowHeap const narrow(240, second);
    tStatus2 status;
    OXDIAG_SET_STATUS_WITH_DESCRIPTION(status, kEarlierError, description);
    EXPECT_EQ(status.getCode(), kEarlierError);
    EXPECT_STREQ(status.getFileName(), "rack.cpp");
    EXPECT_TRUE(status.getDescription() == nullptr);
  }
}
