// Clones of descriptions, and which descriptions are equal.

#include "conformance/harness.h"
#include "oxdiagk/tStatus2.h"
#include "qelmk/dynamicCast.h"
#include "qelmk/statusCodes.h"
#include "status/tStatus2DescriptionImplementation.h"
#include "support/callerCodes.h"
#include "support/heapRecord.h"
#include "support/tItemStream.h"
#include "support/tTestReportable.h"

using nOXDIAG100::tStatus2;
using nOXDIAG100::tStatus2Description;
using nOXDIAG100::tStatus2DescriptionImplementation;
using nQELM100::dynamicCast;
using nQELM100::iCloneable;
using nQELM100::tObject;

namespace {

// The clone of a description for the length of a test.
class tClone {
 public:
  explicit tClone(tStatus2Description const& original, i32 codeOnEntry = 0) : code(codeOnEntry) {
    clone = original.clone(code);
  }
  ~tClone() { drop(); }
  tClone(tClone const&) = delete;
  tClone& operator=(tClone const&) = delete;

  void drop() {
    if (clone == nullptr) return;
    i32 status = 0;
    clone->getClass(status).deleteInstance(clone, status);
    EXPECT_EQ(status, 0);
    clone = nullptr;
  }
  tStatus2Description* get() const { return dynamicCast<tStatus2Description>(clone); }

  i32 code;
  iCloneable* clone;
};

void addUsage(tStatus2Description& description, i32 usageType, i32 number) {
  tStatus2 status;
  description.addReportItem(usageType, tTestReportable(number), status);
}

// One item with the usage type 10 and no reportable.
void readWithoutReportable(tStatus2Description& description) {
  tItemStream& stream = cleanStream();
  stream.put({tItemStream::kU32, 1});
  stream.put({tItemStream::kI32, 10});
  stream.put({tItemStream::kU32, 0});
  i32 code = 0;
  description.readExternal(stream, code);
  EXPECT_EQ(code, 0);
}

}  // namespace

TEST(DescriptionClone, HoldsClonesOfAllItems) {
  i32 const before = tTestReportable::living;
  tStatus2Description original;
  addItems(original, 3);
  tClone const clone(original);
  ASSERT_TRUE(clone.get() != nullptr);
  EXPECT_EQ(clone.code, 0);
  EXPECT_EQ(numbersIn(*clone.get()), 123);
  tStatus2 status;
  EXPECT_EQ(clone.get()->getUsageTypeAtIndex(2, status), 30);
  EXPECT_EQ(tTestReportable::living, before + 6);
}

TEST(DescriptionClone, IsIndependentOfTheOriginal) {
  tStatus2Description original;
  addItems(original, 3);
  tClone const clone(original);
  ASSERT_NE(clone.get(), nullptr);
  tStatus2 status;
  clone.get()->removeReportItemAtIndex(0, status);
  original.replaceReportItemAtIndex(2, 90, tTestReportable(9), status);
  EXPECT_EQ(numbersIn(*clone.get()), 23);
  EXPECT_EQ(numbersIn(original), 129);
}

TEST(DescriptionClone, OfAnEmptyDescriptionIsEmpty) {
  tClone const clone{tStatus2Description()};
  ASSERT_TRUE(clone.get() != nullptr);
  EXPECT_EQ(numbersIn(*clone.get()), 0);
}

TEST(DescriptionClone, KeepsItemsWithoutReportable) {
  tStatus2Description original;
  readWithoutReportable(original);
  tClone const clone(original);
  ASSERT_TRUE(clone.get() != nullptr);
  tStatus2 status;
  EXPECT_EQ(clone.get()->getUsageTypeAtIndex(0, status), 10);
  EXPECT_TRUE(clone.get()->getReportablePtrAtIndex(0, status) == nullptr);
  EXPECT_EQ(status.getCode(), 0);
}

TEST(DescriptionClone, LeavesNothingBehind) {
  i32 const before = tTestReportable::living;
  {
    tStatus2Description original;
    addItems(original, 3);
    tClone clone(original);
    EXPECT_EQ(theHeap().getAllocatedBlocks(), u32{3});
    clone.drop();
  }
  EXPECT_EQ(tTestReportable::living, before);
  EXPECT_TRUE(isHeapUnused());
}

TEST(DescriptionClone, KeepsAWarningOnEntry) {
  tClone const clone(tStatus2Description(), kEarlierWarning);
  EXPECT_TRUE(clone.get() != nullptr);
  EXPECT_EQ(clone.code, kEarlierWarning);
}

TEST(DescriptionClone, IsNotMadeWithAnErrorOnEntry) {
  tClone const clone(tStatus2Description(), kEarlierError);
  EXPECT_TRUE(clone.clone == nullptr);
  EXPECT_EQ(clone.code, kEarlierError);
}

TEST(DescriptionClone, IsNotMadeWhenAReportableCannotBeCloned) {
  i32 const before = tTestReportable::living;
  tStatus2Description original;
  addItems(original, 3);
  tBehaviourScope const failing(tTestReportable::kCloneFails);
  tClone const clone(original);
  EXPECT_TRUE(clone.clone == nullptr);
  EXPECT_EQ(clone.code, kStatusOutOfMemory);
  EXPECT_EQ(tTestReportable::living, before + 3);
  EXPECT_EQ(theHeap().getAllocatedBlocks(), u32{1});
}

TEST(DescriptionClone, OfTheImplementationIsAnObjectOfItsOwn) {
  tStatus2DescriptionImplementation original;
  tStatus2 status;
  original.add(10, tTestReportable(1), status);
  i32 code = 0;
  auto* const clone = dynamicCast<tStatus2DescriptionImplementation>(original.clone(code));
  ASSERT_TRUE(clone != nullptr);
  EXPECT_EQ(clone->getCount(), u32{1});
  EXPECT_TRUE(clone->isEquivalent(original));
  clone->getClass(code).deleteInstance(clone, code);
  EXPECT_EQ(code, 0);
  EXPECT_TRUE(isHeapUnused());
}

TEST(DescriptionClone, OfTheImplementationFailsWithAReportable) {
  tStatus2DescriptionImplementation original;
  tStatus2 status;
  original.add(10, tTestReportable(1), status);
  ASSERT_EQ(status.getCode(), 0);
  tBehaviourScope const failing(tTestReportable::kCloneFails);
  i32 code = 0;
  EXPECT_TRUE(original.clone(code) == nullptr);
  EXPECT_EQ(code, kStatusOutOfMemory);
  EXPECT_TRUE(original.clone(code) == nullptr);
  EXPECT_EQ(code, kStatusOutOfMemory);
  EXPECT_TRUE(isHeapUnused());
}

TEST(DescriptionEquality, HoldsForEqualItemsInTheSameOrder) {
  tStatus2Description left;
  tStatus2Description right;
  EXPECT_TRUE(left == right);
  addItems(left, 3);
  addItems(right, 3);
  EXPECT_TRUE(left == right);
  EXPECT_TRUE(left == left);
  tClone const clone(left);
  ASSERT_NE(clone.get(), nullptr);
  EXPECT_TRUE(*clone.get() == left);
}

TEST(DescriptionEquality, FailsForAnotherOrder) {
  tStatus2Description left;
  tStatus2Description right;
  addUsage(left, 10, 1);
  addUsage(left, 10, 2);
  addUsage(right, 10, 2);
  addUsage(right, 10, 1);
  EXPECT_FALSE(left == right);
}

TEST(DescriptionEquality, FailsForAnotherLength) {
  tStatus2Description left;
  tStatus2Description right;
  addItems(left, 3);
  addItems(right, 2);
  EXPECT_FALSE(left == right);
  EXPECT_FALSE(right == left);
  EXPECT_FALSE(right == tStatus2Description());
}

TEST(DescriptionEquality, FailsForAnotherUsageType) {
  tStatus2Description left;
  tStatus2Description right;
  addUsage(left, 10, 1);
  addUsage(right, 11, 1);
  EXPECT_FALSE(left == right);
}

TEST(DescriptionEquality, FailsForAnotherValueOrClass) {
  tStatus2Description left;
  tStatus2Description value;
  tStatus2Description kind;
  tStatus2 status;
  addUsage(left, 10, 1);
  addUsage(value, 10, 2);
  kind.addReportItem(10, tOtherReportable(1), status);
  EXPECT_FALSE(left == value);
  EXPECT_FALSE(left == kind);
  EXPECT_FALSE(kind == left);
}

TEST(DescriptionEquality, NeedsBothReportablesOrNone) {
  tStatus2Description with;
  tStatus2Description without;
  tStatus2Description alsoWithout;
  addUsage(with, 10, 1);
  readWithoutReportable(without);
  readWithoutReportable(alsoWithout);
  EXPECT_FALSE(with == without);
  EXPECT_FALSE(without == with);
  EXPECT_TRUE(without == alsoWithout);
}

TEST(DescriptionEquality, FailsWhenAComparisonFails) {
  tStatus2Description left;
  tStatus2Description right;
  addItems(left, 2);
  addItems(right, 2);
  tBehaviourScope const failing(tTestReportable::kComparisonFails);
  EXPECT_FALSE(left == right);
}
