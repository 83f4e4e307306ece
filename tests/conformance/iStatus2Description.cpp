// The abstract face of a description, and the memory that descriptions come from.

#include "oxdiagk/iStatus2Description.h"

#include "conformance/harness.h"
#include "qelmk/dynamicCast.h"
#include "qelmk/tClass.h"
#include "support/callerCodes.h"
#include "support/heapRecord.h"
#include "support/tTestDescription.h"

using nOXDIAG100::iStatus2Description;
using nQELM100::dynamicCast;
using nQELM100::iCloneable;
using nQELM100::iCloneableExternalizable;
using nQELM100::iExternalizable;
using nQELM100::tObject;

namespace {

constexpr tMemAllocationFlags kFlags = kMemLongLived;
constexpr size_t kTooMuch = 16384;

// What the operator with a status makes of one, when it can give memory or cannot.
i32 statusAfterNew(size_t size, i32 status) {
  void* const block = iStatus2Description::operator new(size, kFlags, &status);
  if (block != nullptr) iStatus2Description::operator delete(block);
  return status;
}

}  // namespace

TEST(StatusDescriptionFace, HasItsRegisteredName) {
  i32 status = 0;
  EXPECT_STREQ(iStatus2Description::staticGetClass(status).getName(),
               "nOXDIAG100::iStatus2Description");
  EXPECT_EQ(status, 0);
}

TEST(StatusDescriptionFace, HasNoInstancesOfItsOwn) {
  i32 status = 0;
  EXPECT_TRUE(iStatus2Description::staticGetClass(status).newInstance(status) == nullptr);
  EXPECT_TRUE(status < 0);
}

TEST(StatusDescriptionFace, IsFoundByTheFrameworksCast) {
  tTestDescription description(42);
  tObject* const object = &description;
  EXPECT_TRUE(dynamicCast<iStatus2Description>(object) == &description);
  EXPECT_TRUE(dynamicCast<iCloneable>(object) == &description);
  EXPECT_TRUE(dynamicCast<iExternalizable>(object) == &description);
  EXPECT_TRUE(dynamicCast<iCloneableExternalizable>(object) == &description);
  EXPECT_TRUE(dynamicCast<tTalkingDescription>(object) == nullptr);
}

TEST(StatusDescriptionFace, IsNotFoundInAForeignObject) {
  tForeignObject foreign;
  EXPECT_TRUE(dynamicCast<iStatus2Description>(static_cast<tObject*>(&foreign)) == nullptr);
}

TEST(StatusDescriptionFace, WritesAnEmptyText) {
  tTestDescription const description(42);
  char buffer[] = "####";
  description.toString(buffer, sizeof buffer);
  EXPECT_STREQ(buffer, "");
  EXPECT_EQ(buffer[1], '#');
}

TEST(StatusDescriptionFace, WritesAnEmptyTextIntoOneByte) {
  tTestDescription const description(42);
  char buffer[] = "##";
  description.toString(buffer, 1);
  EXPECT_EQ(buffer[0], '\0');
  EXPECT_EQ(buffer[1], '#');
}

TEST(StatusDescriptionFace, WritesNothingWithoutBufferOrSize) {
  tTestDescription const description(42);
  char buffer[] = "#";
  description.toString(buffer, 0);
  description.toString(nullptr, 10);
  EXPECT_EQ(buffer[0], '#');
}

TEST(StatusDescriptionMemory, ComesFromTheStatusHeap) {
  auto* const description = new tTestDescription(42);
  ASSERT_TRUE(description != nullptr);
  EXPECT_EQ(theHeap().getAllocatedBlocks(), u32{1});
  delete description;
  EXPECT_TRUE(isHeapUnused());
}

TEST(StatusDescriptionMemory, GoesBackThroughTheClass) {
  i32 status = 0;
  auto const testClass = tTestDescription::staticGetClass(status);
  tObject* const object = testClass.newInstance(status);
  ASSERT_TRUE(object != nullptr);
  EXPECT_EQ(theHeap().getAllocatedBlocks(), u32{1});
  testClass.deleteInstance(object, status);
  EXPECT_EQ(status, 0);
  EXPECT_TRUE(isHeapUnused());
}

TEST(StatusDescriptionMemory, IsNullWhenTheHeapIsFull) {
  tFullHeap const full;
  EXPECT_TRUE(new tTestDescription(42) == nullptr);
  EXPECT_TRUE(new (kFlags) tTestDescription(42) == nullptr);
  EXPECT_TRUE(new (kFlags, nullptr) tTestDescription(42) == nullptr);
}

TEST(StatusDescriptionMemory, TakesAnyFlags) {
  auto* const scratch = new (kMemScratch) tTestDescription(42);
  auto* const other = new (static_cast<tMemAllocationFlags>(7)) tTestDescription(43);
  EXPECT_EQ(theHeap().getAllocatedBlocks(), u32{2});
  delete scratch;
  delete other;
  EXPECT_TRUE(isHeapUnused());
}

TEST(StatusDescriptionMemory, LeavesTheStatusOfASuccessAlone) {
  EXPECT_EQ(statusAfterNew(100, 0), 0);
  EXPECT_EQ(statusAfterNew(100, kEarlierWarning), kEarlierWarning);
}

TEST(StatusDescriptionMemory, ReportsOutOfMemory) {
  EXPECT_EQ(statusAfterNew(kTooMuch, 0), kStatusOutOfMemory);
  EXPECT_EQ(statusAfterNew(kTooMuch, kEarlierWarning), kStatusOutOfMemory);
}

TEST(StatusDescriptionMemory, GivesNothingWithAnErrorOnEntry) {
  i32 status = kEarlierError;
  EXPECT_TRUE(iStatus2Description::operator new(16, kFlags, &status) == nullptr);
  EXPECT_EQ(status, kEarlierError);
  EXPECT_TRUE(isHeapUnused());
}

TEST(StatusDescriptionMemory, WorksWithoutStatus) {
  auto* const description = new (kFlags, nullptr) tTestDescription(42);
  EXPECT_TRUE(description != nullptr);
  delete description;
}

TEST(StatusDescriptionMemory, HasTheSameForArrays) {
  i32 status = 0;
  void* const plain = iStatus2Description::operator new[](32);
  void* const flagged = iStatus2Description::operator new[](32, kFlags);
  void* const reporting = iStatus2Description::operator new[](32, kFlags, &status);
  EXPECT_EQ(theHeap().getAllocatedBlocks(), u32{3});
  EXPECT_EQ(status, 0);
  iStatus2Description::operator delete[](plain);
  iStatus2Description::operator delete[](flagged);
  iStatus2Description::operator delete[](reporting);
  EXPECT_TRUE(isHeapUnused());
  EXPECT_TRUE(iStatus2Description::operator new[](kTooMuch, kFlags, &status) == nullptr);
  EXPECT_EQ(status, kStatusOutOfMemory);
}

TEST(StatusDescriptionMemory, FailsForSizesThatNoSignedNumberHolds) {
  EXPECT_EQ(statusAfterNew(size_t{0x80000000}, 0), kStatusOutOfMemory);
  EXPECT_EQ(statusAfterNew(size_t{0x100000010}, 0), kStatusOutOfMemory);
  EXPECT_EQ(statusAfterNew(~size_t{0}, 0), kStatusOutOfMemory);
  EXPECT_TRUE(iStatus2Description::operator new (~size_t{0}) == nullptr);
}

TEST(StatusDescriptionMemory, NullIsNothingToGiveBack) {
  iStatus2Description::operator delete(nullptr);
  iStatus2Description::operator delete[](nullptr);
  EXPECT_TRUE(isHeapUnused());
}
