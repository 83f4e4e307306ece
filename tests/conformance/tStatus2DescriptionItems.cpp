// The list of a description: adding, inserting, taking out, replacing, asking.

#include "conformance/harness.h"
#include "oxdiagk/statusCodes.h"
#include "oxdiagk/tReportItem.h"
#include "oxdiagk/tStatus2.h"
#include "oxdiagk/tTitleReportable.h"
#include "oxdiagk/tWhiteSpaceReportable.h"
#include "qelmk/dynamicCast.h"
#include "qelmk/statusCodes.h"
#include "support/callerCodes.h"
#include "support/heapRecord.h"
#include "support/tTestDescription.h"
#include "support/tTestReportable.h"

using nOXDIAG100::iStatus2Description;
using nOXDIAG100::kStatusIndexOutOfRange;
using nOXDIAG100::tStatus2;
using nOXDIAG100::tStatus2Description;
using nOXDIAG100::tTitleReportable;
using nOXDIAG100::tWhiteSpaceReportable;
using nQELM100::dynamicCast;
using nQELM100::tClass;
using nQELM100::tObject;

namespace {

// Indexes that a list of three items does not have.
constexpr u32 kPastTheThird[] = {3, 4, 0xFFFFFFFF};

void expectOutOfRange(tStatus2 const& status) {
  EXPECT_EQ(status.getCode(), kStatusIndexOutOfRange);
  EXPECT_STREQ(status.getComponentName(), "oxdiagk");
  EXPECT_STREQ(status.getFileName(), "source/status/tStatus2DescriptionImplementation");
  EXPECT_NE(status.getLineNumber(), u32{0});
}

}  // namespace

TEST(DescriptionItems, CodesAreTheDocumentedOnes) {
  EXPECT_EQ(nOXDIAG100::kStatusNoImplementation, -50150);
  EXPECT_EQ(kStatusIndexOutOfRange, -88600);
}

TEST(DescriptionItems, DescriptionHasItsRegisteredName) {
  i32 status = 0;
  tStatus2Description const description;
  EXPECT_STREQ(description.getClass(status).getName(), "nOXDIAG100::tStatus2Description");
}

TEST(DescriptionItems, DescriptionIsFoundByItsName) {
  i32 status = 0;
  tClass const found = tClass::forName("nOXDIAG100::tStatus2Description", status);
  EXPECT_EQ(status, 0);
  tObject* const object = found.newInstance(status);
  EXPECT_TRUE(dynamicCast<tStatus2Description>(object) != nullptr);
  EXPECT_TRUE(dynamicCast<iStatus2Description>(object) != nullptr);
  found.deleteInstance(object, status);
  EXPECT_EQ(status, 0);
}

TEST(DescriptionItems, ImplementationIsFoundByItsName) {
  i32 status = 0;
  tClass const found = tClass::forName("nOXDIAG100::tStatus2DescriptionImplementation", status);
  EXPECT_EQ(status, 0);
  tObject* const object = found.newInstance(status);
  EXPECT_TRUE(object != nullptr);
  found.deleteInstance(object, status);
  EXPECT_EQ(status, 0);
  EXPECT_TRUE(isHeapUnused());
}

TEST(DescriptionItems, StartEmpty) {
  tStatus2 status;
  tStatus2Description const plain;
  tStatus2Description const aware(status);
  EXPECT_EQ(plain.getNumberOfReportItems(status), u32{0});
  EXPECT_EQ(aware.getNumberOfReportItems(status), u32{0});
  EXPECT_EQ(status.getCode(), 0);
}

TEST(DescriptionItems, KeepAWarningOnConstruction) {
  tStatus2 status(kEarlierWarning);
  tStatus2Description const description(status);
  EXPECT_EQ(description.getNumberOfReportItems(status), u32{0});
  EXPECT_EQ(status.getCode(), kEarlierWarning);
}

TEST(DescriptionItems, TakeTwoBlocksOfTheStatusHeapHoweverManyThereAre) {
  auto* const description = new tStatus2Description;
  ASSERT_NE(description, nullptr);
  EXPECT_EQ(addItems(*description, 100), 0);
  EXPECT_EQ(theHeap().getAllocatedBlocks(), u32{2});
  delete description;
  EXPECT_TRUE(isHeapUnused());
}

TEST(DescriptionItems, AreAppendedInOrder) {
  tStatus2Description description;
  EXPECT_EQ(addItems(description, 3), 0);
  tStatus2 status;
  EXPECT_EQ(description.getNumberOfReportItems(status), u32{3});
  EXPECT_EQ(numbersIn(description), 123);
  EXPECT_EQ(description.getUsageTypeAtIndex(0, status), 10);
  EXPECT_EQ(description.getUsageTypeAtIndex(2, status), 30);
  EXPECT_EQ(status.getCode(), 0);
}

TEST(DescriptionItems, TakeAnyUsageType) {
  constexpr i32 kSmallest = -0x7FFFFFFF - 1;
  tStatus2Description description;
  tStatus2 status;
  description.addReportItem(kSmallest, tTestReportable(1), status);
  description.addReportItem(0x7FFFFFFF, tTestReportable(1), status);
  EXPECT_EQ(description.getUsageTypeAtIndex(0, status), kSmallest);
  EXPECT_EQ(description.getUsageTypeAtIndex(1, status), 0x7FFFFFFF);
}

TEST(DescriptionItems, AreIndependentOfTheCallersObject) {
  tStatus2Description description;
  tStatus2 status;
  {
    tTestReportable value(1);
    description.addReportItem(10, value, status);
    value.number = 2;
  }
  EXPECT_EQ(numbersIn(description), 1);
}

TEST(DescriptionItems, AreDestroyedWithTheDescription) {
  i32 const before = tTestReportable::living;
  {
    tStatus2Description description;
    addItems(description, 3);
    EXPECT_EQ(tTestReportable::living, before + 3);
  }
  EXPECT_EQ(tTestReportable::living, before);
  EXPECT_TRUE(isHeapUnused());
}

TEST(DescriptionItems, AHeaderIsATitleOfTheCallersUsageType) {
  tStatus2Description description;
  tStatus2 status;
  description.addHeader(5, status);
  EXPECT_EQ(description.getUsageTypeAtIndex(0, status), 5);
  EXPECT_TRUE(dynamicCast<tTitleReportable>(description.getReportablePtrAtIndex(0, status)) !=
              nullptr);
  EXPECT_EQ(status.getCode(), 0);
}

TEST(DescriptionItems, ANewlineIsWhiteSpaceOfUsageType223) {
  tStatus2Description description;
  tStatus2 status;
  description.addNewline(status);
  EXPECT_EQ(description.getUsageTypeAtIndex(0, status), 223);
  EXPECT_TRUE(dynamicCast<tWhiteSpaceReportable>(description.getReportablePtrAtIndex(0, status)) !=
              nullptr);
  EXPECT_EQ(status.getCode(), 0);
}

TEST(DescriptionItems, AreInsertedBeforeTheGivenPosition) {
  tStatus2Description description;
  addItems(description, 3);
  tStatus2 status;
  description.insertReportItemAtIndex(0, 40, tTestReportable(4), status);
  description.insertReportItemAtIndex(2, 50, tTestReportable(5), status);
  EXPECT_EQ(numbersIn(description), 41523);
  EXPECT_EQ(description.getUsageTypeAtIndex(2, status), 50);
  EXPECT_EQ(status.getCode(), 0);
}

TEST(DescriptionItems, AreAppendedWhenInsertedAtTheEndOrBehindIt) {
  for (u32 index : kPastTheThird) {
    tStatus2Description description;
    addItems(description, 3);
    tStatus2 status;
    description.insertReportItemAtIndex(index, 40, tTestReportable(4), status);
    EXPECT_EQ(numbersIn(description), 1234);
    EXPECT_EQ(status.getCode(), 0);
  }
}

TEST(DescriptionItems, AreInsertedIntoAnEmptyList) {
  tStatus2Description description;
  tStatus2 status;
  description.insertReportItemAtIndex(7, 40, tTestReportable(4), status);
  EXPECT_EQ(numbersIn(description), 4);
}

TEST(DescriptionItems, MoveDownWhenOneIsRemoved) {
  i32 const before = tTestReportable::living;
  tStatus2Description description;
  addItems(description, 3);
  tStatus2 status;
  description.removeReportItemAtIndex(1, status);
  EXPECT_EQ(numbersIn(description), 13);
  EXPECT_EQ(description.getUsageTypeAtIndex(1, status), 30);
  EXPECT_EQ(tTestReportable::living, before + 2);
  EXPECT_EQ(status.getCode(), 0);
}

TEST(DescriptionItems, AreReplacedInPlace) {
  i32 const before = tTestReportable::living;
  tStatus2Description description;
  addItems(description, 3);
  tStatus2 status;
  tTestReportable value(9);
  description.replaceReportItemAtIndex(1, 90, value, status);
  value.number = 8;
  EXPECT_EQ(numbersIn(description), 193);
  EXPECT_EQ(description.getUsageTypeAtIndex(1, status), 90);
  EXPECT_EQ(tTestReportable::living, before + 4);
  EXPECT_EQ(status.getCode(), 0);
}

TEST(DescriptionItems, MayBeMadeOfTheListsOwnReportable) {
  tStatus2Description description;
  ASSERT_EQ(addItems(description, 4), 0);
  tStatus2 status;
  for (u32 i = 0; i != 4; ++i) {
    ASSERT_NE(description.getReportablePtrAtIndex(0, status), nullptr);
    description.addReportItem(10, *description.getReportablePtrAtIndex(0, status), status);
  }
  ASSERT_EQ(description.getNumberOfReportItems(status), u32{8});
  description.replaceReportItemAtIndex(1, 10, *description.getReportablePtrAtIndex(1, status),
                                       status);
  ASSERT_EQ(status.getCode(), 0);
  description.insertReportItemAtIndex(0, 10, *description.getReportablePtrAtIndex(3, status),
                                      status);
  EXPECT_EQ(numbersIn(description), 412341111);
  EXPECT_EQ(status.getCode(), 0);
}

TEST(DescriptionItems, AreAllGoneFromAnEmptiedList) {
  i32 const before = tTestReportable::living;
  tStatus2Description description;
  addItems(description, 3);
  tStatus2 status;
  description.makeEmpty(status);
  EXPECT_EQ(description.getNumberOfReportItems(status), u32{0});
  EXPECT_EQ(tTestReportable::living, before);
  description.makeEmpty(status);
  EXPECT_EQ(status.getCode(), 0);
  EXPECT_EQ(addItems(description, 2), 0);
  EXPECT_EQ(numbersIn(description), 12);
}

TEST(DescriptionItems, TellTheClassNameOfTheirReportable) {
  tStatus2Description description;
  tStatus2 status;
  _STL::string name("old");
  description.addHeader(5, status);
  description.addReportItem(6, tTestReportable(1), status);
  description.getReportableClassNameAtIndex(0, name, status);
  EXPECT_STREQ(name.c_str(), "nOXDIAG100::tTitleReportable");
  description.getReportableClassNameAtIndex(1, name, status);
  EXPECT_STREQ(name.c_str(), "tTestReportable");
  EXPECT_EQ(status.getCode(), 0);
}

TEST(DescriptionItems, AreOutOfRangeFromTheCountOn) {
  tStatus2Description description;
  addItems(description, 3);
  for (u32 index : kPastTheThird) {
    _STL::string name("old");
    tStatus2 usage;
    tStatus2 pointer;
    tStatus2 className;
    tStatus2 removal;
    tStatus2 replacement;
    EXPECT_EQ(description.getUsageTypeAtIndex(index, usage), -1);
    EXPECT_TRUE(description.getReportablePtrAtIndex(index, pointer) == nullptr);
    description.getReportableClassNameAtIndex(index, name, className);
    description.removeReportItemAtIndex(index, removal);
    description.replaceReportItemAtIndex(index, 40, tTestReportable(4), replacement);
    expectOutOfRange(usage);
    expectOutOfRange(pointer);
    expectOutOfRange(className);
    expectOutOfRange(removal);
    expectOutOfRange(replacement);
    EXPECT_STREQ(name.c_str(), "old");
  }
  EXPECT_EQ(numbersIn(description), 123);
}

TEST(DescriptionItems, OfAnEmptyListAreAllOutOfRange) {
  tStatus2Description const description;
  tStatus2 status;
  EXPECT_EQ(description.getUsageTypeAtIndex(0, status), -1);
  expectOutOfRange(status);
}

TEST(DescriptionItems, KeepAWarningOnEntry) {
  tStatus2Description description;
  tStatus2 status(kEarlierWarning);
  description.addReportItem(10, tTestReportable(1), status);
  EXPECT_EQ(description.getUsageTypeAtIndex(0, status), 10);
  EXPECT_EQ(status.getCode(), kEarlierWarning);
}

TEST(DescriptionItems, AreOutOfRangeInsteadOfAWarning) {
  tStatus2Description const description;
  tStatus2 status(kEarlierWarning);
  EXPECT_EQ(description.getUsageTypeAtIndex(0, status), -1);
  expectOutOfRange(status);
}

TEST(DescriptionItems, StayAsTheyAreWithAnErrorOnEntry) {
  tStatus2Description description;
  addItems(description, 3);
  tStatus2 status(kEarlierError);
  description.addReportItem(40, tTestReportable(4), status);
  description.addHeader(40, status);
  description.addNewline(status);
  description.insertReportItemAtIndex(0, 40, tTestReportable(4), status);
  description.replaceReportItemAtIndex(0, 40, tTestReportable(4), status);
  description.removeReportItemAtIndex(0, status);
  description.makeEmpty(status);
  EXPECT_EQ(status.getCode(), kEarlierError);
  EXPECT_FALSE(status.hasDetail());
  EXPECT_EQ(numbersIn(description), 123);
}

TEST(DescriptionItems, TellNothingWithAnErrorOnEntry) {
  tStatus2Description description;
  addItems(description, 3);
  tStatus2 status(kEarlierError);
  _STL::string name("old");
  EXPECT_EQ(description.getNumberOfReportItems(status), u32{0});
  EXPECT_EQ(description.getUsageTypeAtIndex(0, status), -1);
  EXPECT_TRUE(description.getReportablePtrAtIndex(0, status) == nullptr);
  description.getReportableClassNameAtIndex(0, name, status);
  EXPECT_STREQ(name.c_str(), "old");
  EXPECT_EQ(status.getCode(), kEarlierError);
}

TEST(DescriptionItems, AreNotAddedWhenTheyCannotBeCloned) {
  tStatus2Description description;
  addItems(description, 3);
  tBehaviourScope const failing(tTestReportable::kCloneFails);
  tStatus2 statuses[3];
  description.addReportItem(40, tTestReportable(4), statuses[0]);
  description.insertReportItemAtIndex(0, 40, tTestReportable(4), statuses[1]);
  description.replaceReportItemAtIndex(0, 40, tTestReportable(4), statuses[2]);
  for (tStatus2 const& status : statuses) {
    EXPECT_EQ(status.getCode(), kStatusOutOfMemory);
    EXPECT_STREQ(status.getFileName(), "source/status/tReportItem");
  }
  EXPECT_EQ(numbersIn(description), 123);
  tStatus2 status;
  EXPECT_EQ(description.getUsageTypeAtIndex(0, status), 10);
}

TEST(DescriptionItems, AreNotAddedWhenTheirCloneIsNoReportable) {
  i32 const before = tForeignObject::living;
  tStatus2Description description;
  tBehaviourScope const foreign(tTestReportable::kCloneIsForeign);
  tStatus2 status;
  description.addReportItem(40, tTestReportable(4), status);
  EXPECT_EQ(status.getCode(), nQELM100::kStatusClassMismatch);
  EXPECT_EQ(numbersIn(description), 0);
  EXPECT_EQ(tForeignObject::living, before);
}
