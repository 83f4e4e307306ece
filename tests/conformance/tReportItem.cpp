// One item of a description.

#include "oxdiagk/tReportItem.h"

#include "conformance/harness.h"
#include "oxdiagk/tStatus2.h"
#include "qelmk/dynamicCast.h"
#include "qelmk/statusCodes.h"
#include "stl/utility.h"
#include "support/callerCodes.h"
#include "support/statusForms.h"
#include "support/tItemStream.h"
#include "support/tTestDescription.h"
#include "support/tTestReportable.h"

using nOXDIAG100::tReportItem;
using nOXDIAG100::tStatus2;
using nQELM100::tClass;
using nQELM100::tObject;

namespace {

constexpr i32 kUsage = 77;

tReportItem makeItem(i32 number) {
  tStatus2 status;
  return tReportItem(kUsage, tTestReportable(number), status);
}

i32 numberIn(tReportItem const& item) {
  return numberOf(item.getReportable());
}

// A stream with an item that holds the number 42, from its first item on.
tItemStream& writtenItem() {
  tItemStream& stream = cleanStream();
  i32 status = 0;
  makeItem(42).writeExternal(stream, status);
  return stream;
}

}  // namespace

TEST(ReportItem, HasItsRegisteredName) {
  i32 status = 0;
  EXPECT_STREQ(tReportItem::staticGetClass(status).getName(), "nOXDIAG100::tReportItem");
}

TEST(ReportItem, IsFoundByItsName) {
  i32 status = 0;
  tClass const found = tClass::forName("nOXDIAG100::tReportItem", status);
  EXPECT_EQ(status, 0);
  EXPECT_TRUE(found == tReportItem::staticGetClass(status));
  tObject* const item = found.newInstance(status);
  EXPECT_TRUE(nQELM100::dynamicCast<tReportItem>(item) != nullptr);
  found.deleteInstance(item, status);
  EXPECT_EQ(status, 0);
}

TEST(ReportItem, StartsWithoutReportable) {
  tReportItem const item;
  EXPECT_EQ(item.getUsageType(), 0);
  EXPECT_TRUE(item.getReportable() == nullptr);
  EXPECT_FALSE(item.hasFailed());
}

TEST(ReportItem, HoldsACloneOfTheValue) {
  tTestReportable value(42);
  tStatus2 status;
  tReportItem const item(kUsage, value, status);
  value.number = 43;
  EXPECT_EQ(item.getUsageType(), kUsage);
  EXPECT_TRUE(item.getReportable() != &value);
  EXPECT_EQ(numberIn(item), 42);
  EXPECT_EQ(status.getCode(), 0);
}

TEST(ReportItem, DestroysItsReportable) {
  i32 const before = tTestReportable::living;
  {
    tReportItem const item = makeItem(42);
    EXPECT_EQ(tTestReportable::living, before + 1);
  }
  EXPECT_EQ(tTestReportable::living, before);
}

TEST(ReportItem, ClonesNothingWithAnErrorOnEntry) {
  tStatus2 status(kEarlierError);
  tReportItem const item(kUsage, tTestReportable(42), status);
  EXPECT_TRUE(item.getReportable() == nullptr);
  EXPECT_EQ(status.getCode(), kEarlierError);
}

TEST(ReportItem, KeepsAWarningOnEntry) {
  tStatus2 status(kEarlierWarning);
  tReportItem const item(kUsage, tTestReportable(42), status);
  EXPECT_EQ(numberIn(item), 42);
  EXPECT_EQ(status.getCode(), kEarlierWarning);
}

TEST(ReportItem, TakesNoWarningFromTheClone) {
  tBehaviourScope const warning(tTestReportable::kCloneWarns);
  tStatus2 status;
  tReportItem const item(kUsage, tTestReportable(42), status);
  EXPECT_EQ(numberIn(item), 42);
  EXPECT_EQ(status.getCode(), 0);
}

TEST(ReportItem, ReportsOutOfMemoryWhenThereIsNoClone) {
  constexpr tTestReportable::tBehaviour kWays[] = {tTestReportable::kCloneFails,
                                                   tTestReportable::kCloneFailsSilently};
  for (auto way : kWays) {
    tBehaviourScope const failing(way);
    tStatus2 status;
    tReportItem const item(kUsage, tTestReportable(42), status);
    EXPECT_TRUE(item.getReportable() == nullptr);
    EXPECT_EQ(status.getCode(), kStatusOutOfMemory);
    EXPECT_STREQ(status.getComponentName(), "oxdiagk");
    EXPECT_STREQ(status.getFileName(), "source/status/tReportItem");
    EXPECT_NE(status.getLineNumber(), u32{0});
  }
}

TEST(ReportItem, ReportsAMismatchWhenTheCloneIsNoReportable) {
  tBehaviourScope const foreign(tTestReportable::kCloneIsForeign);
  i32 const before = tForeignObject::living;
  tStatus2 status;
  tReportItem const item(kUsage, tTestReportable(42), status);
  EXPECT_TRUE(item.getReportable() == nullptr);
  EXPECT_EQ(status.getCode(), nQELM100::kStatusClassMismatch);
  EXPECT_STREQ(status.getFileName(), "source/status/tReportItem");
  EXPECT_EQ(tForeignObject::living, before);
}

TEST(ReportItem, IsCopiedWithItsReportable) {
  tReportItem const item = makeItem(42);
  tReportItem const copy(item);
  EXPECT_EQ(copy.getUsageType(), kUsage);
  EXPECT_TRUE(copy.getReportable() != item.getReportable());
  EXPECT_EQ(numberIn(copy), 42);
  EXPECT_FALSE(copy.hasFailed());
}

TEST(ReportItem, IsCopiedWithoutReportable) {
  tReportItem const item;
  tReportItem const copy(item);
  EXPECT_TRUE(copy.getReportable() == nullptr);
  EXPECT_FALSE(copy.hasFailed());
}

TEST(ReportItem, TellsOfACopyThatCouldNotBeMade) {
  tReportItem const item = makeItem(42);
  tBehaviourScope const failing(tTestReportable::kCloneFails);
  tReportItem const copy(item);
  EXPECT_TRUE(copy.hasFailed());
  EXPECT_TRUE(copy.getReportable() == nullptr);
  EXPECT_FALSE(item.hasFailed());
}

TEST(ReportItem, ACopyOfACopyThatFailedIsNotFailed) {
  tReportItem const item = makeItem(42);
  tBehaviourScope const failing(tTestReportable::kCloneFails);
  tReportItem const failed(item);
  tReportItem const copy(failed);
  EXPECT_FALSE(copy.hasFailed());
}

TEST(ReportItem, IsMovedWithItsReportable) {
  tReportItem item = makeItem(42);
  auto const* const reportable = item.getReportable();
  tReportItem const moved(_STL::move(item));
  EXPECT_EQ(moved.getUsageType(), kUsage);
  EXPECT_TRUE(moved.getReportable() == reportable);
}

TEST(ReportItem, AssignmentReplacesTheReportable) {
  i32 const before = tTestReportable::living;
  {
    tReportItem const item = makeItem(42);
    tReportItem target = makeItem(43);
    target = item;
    EXPECT_EQ(numberIn(target), 42);
    EXPECT_TRUE(target.getReportable() != item.getReportable());
    EXPECT_EQ(tTestReportable::living, before + 2);
  }
  EXPECT_EQ(tTestReportable::living, before);
}

TEST(ReportItem, AssignmentToItselfChangesNothing) {
  tReportItem item = makeItem(42);
  tReportItem const& same = item;
  item = same;
  EXPECT_EQ(item.getUsageType(), kUsage);
  EXPECT_EQ(numberIn(item), 42);
}

TEST(ReportItem, AssignmentThatFailsKeepsTheContent) {
  tReportItem const item;
  tReportItem const source = makeItem(42);
  tReportItem target = makeItem(43);
  {
    tBehaviourScope const failing(tTestReportable::kCloneFails);
    target = source;
  }
  EXPECT_EQ(numberIn(target), 43);
  EXPECT_TRUE(target.hasFailed());
  target = source;
  EXPECT_EQ(numberIn(target), 42);
  EXPECT_TRUE(target.hasFailed());
}

TEST(ReportItem, MoveAssignmentDestroysTheOldReportable) {
  i32 const before = tTestReportable::living;
  tReportItem target = makeItem(43);
  target = makeItem(42);
  EXPECT_EQ(numberIn(target), 42);
  EXPECT_EQ(tTestReportable::living, before + 1);
}

TEST(ReportItem, IsClonedThroughTheFramework) {
  i32 status = 0;
  tReportItem const item = makeItem(42);
  auto* const copy = nQELM100::dynamicCast<tReportItem>(item.clone(status));
  ASSERT_TRUE(copy != nullptr);
  EXPECT_EQ(copy->getUsageType(), kUsage);
  EXPECT_EQ(numberIn(*copy), 42);
  copy->getClass(status).deleteInstance(copy, status);
  EXPECT_EQ(status, 0);
}

TEST(ReportItem, IsNotClonedWithoutAReportablesClone) {
  tReportItem const item = makeItem(42);
  tBehaviourScope const failing(tTestReportable::kCloneFails);
  ASSERT_NE(item.getReportable(), nullptr);
  i32 status = 0;
  EXPECT_TRUE(item.clone(status) == nullptr);
  EXPECT_EQ(status, kStatusOutOfMemory);
}

TEST(ReportItem, IsNotClonedWithAnErrorOnEntry) {
  i32 status = kEarlierError;
  EXPECT_TRUE(makeItem(42).clone(status) == nullptr);
  EXPECT_EQ(status, kEarlierError);
}

TEST(ReportItem, WritesUsageTypeFlagAndReportable) {
  tItemStream const& stream = writtenItem();
  ASSERT_EQ(stream.getCount(), u32{4});
  EXPECT_TRUE(stream.getItem(0) == signedItem(kUsage));
  EXPECT_TRUE(stream.getItem(1) == unsignedItem(1));
  EXPECT_EQ(stream.getItem(2).kind, tItemStream::kObject);
  EXPECT_TRUE(stream.getItem(3) == signedItem(42));
}

TEST(ReportItem, WritesAZeroForNoReportable) {
  tItemStream& stream = cleanStream();
  i32 status = 0;
  tReportItem().writeExternal(stream, status);
  ASSERT_EQ(stream.getCount(), u32{2});
  EXPECT_TRUE(stream.getItem(0) == signedItem(0));
  EXPECT_TRUE(stream.getItem(1) == unsignedItem(0));
}

TEST(ReportItem, NeitherWritesNorReadsWithAnErrorOnEntry) {
  tItemStream& stream = writtenItem();
  tReportItem item;
  i32 status = kEarlierError;
  item.readExternal(stream, status);
  item.writeExternal(stream, status);
  EXPECT_EQ(status, kEarlierError);
  EXPECT_EQ(stream.getPosition(), u32{0});
  EXPECT_EQ(stream.getCount(), u32{4});
  EXPECT_TRUE(item.getReportable() == nullptr);
}

TEST(ReportItem, ComesBackFromAStream) {
  tItemStream& stream = writtenItem();
  tReportItem item = makeItem(43);
  i32 status = kEarlierWarning;
  item.readExternal(stream, status);
  EXPECT_EQ(status, kEarlierWarning);
  EXPECT_EQ(item.getUsageType(), kUsage);
  EXPECT_EQ(numberIn(item), 42);
  EXPECT_EQ(stream.getPosition(), u32{4});
}

TEST(ReportItem, ComesBackWithoutReportable) {
  tItemStream& stream = cleanStream();
  stream.put(signedItem(-5));
  stream.put(unsignedItem(0));
  tReportItem item = makeItem(43);
  i32 status = 0;
  item.readExternal(stream, status);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(item.getUsageType(), -5);
  EXPECT_TRUE(item.getReportable() == nullptr);
}

TEST(ReportItem, TakesEveryFlagButZeroForAReportable) {
  tItemStream& stream = writtenItem();
  stream.replace(1, 0x80000000);
  tReportItem item;
  i32 status = 0;
  item.readExternal(stream, status);
  EXPECT_EQ(numberIn(item), 42);
}

TEST(ReportItem, StaysAsItWasWhereverTheStreamEnds) {
  i32 const before = tTestReportable::living;
  for (u32 end = 0; end < 4; ++end) {
    tItemStream& stream = writtenItem();
    stream.endAt(end);
    tReportItem item = makeItem(43);
    i32 status = 0;
    item.readExternal(stream, status);
    EXPECT_EQ(status, tItemStream::kStatusEnded);
    EXPECT_EQ(item.getUsageType(), kUsage);
    EXPECT_EQ(numberIn(item), 43);
  }
  EXPECT_EQ(tTestReportable::living, before);
}

TEST(ReportItem, RefusesAnObjectThatIsNoReportable) {
  i32 const before = tForeignObject::living;
  tItemStream& stream = cleanStream();
  i32 status = 0;
  stream.put(signedItem(kUsage));
  stream.put(unsignedItem(1));
  tForeignObject const foreign;
  stream.writeObject(&foreign, status);
  tReportItem item = makeItem(43);
  item.readExternal(stream, status);
  EXPECT_EQ(status, nQELM100::kStatusClassMismatch);
  EXPECT_EQ(numberIn(item), 43);
  EXPECT_EQ(tForeignObject::living, before + 1);
}

TEST(ReportItem, RefusesANullObject) {
  tItemStream& stream = cleanStream();
  i32 status = 0;
  stream.put(signedItem(kUsage));
  stream.put(unsignedItem(1));
  stream.writeObject(nullptr, status);
  tReportItem item = makeItem(43);
  item.readExternal(stream, status);
  EXPECT_EQ(status, nQELM100::kStatusClassMismatch);
  EXPECT_EQ(numberIn(item), 43);
}
