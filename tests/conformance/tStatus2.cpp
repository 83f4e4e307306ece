// A status as a value: codes, copies, and what a detail keeps.

#include "oxdiagk/tStatus2.h"

#include "conformance/harness.h"
#include "support/callerCodes.h"
#include "support/heapRecord.h"
#include "support/statusOrigin.h"

using nOXDIAG100::tStatus2;

namespace {

constexpr i32 kOtherError = -61008;
constexpr u32 kRecordUnits = 16;

bool hasSameDetail(tStatus2 const& left, tStatus2 const& right) {
  return left.hasDetail() && left.getComponentName() == right.getComponentName();
}

bool keepsComponent(char const* component, char const* kept) {
  tOrigin const origin(component, "file");
  tStatus2 status;
  OXDIAG_SET_STATUS(status, kError);
  return status.hasDetail() && __builtin_strcmp(status.getComponentName(), kept) == 0;
}

bool keepsFile(char const* file, char const* kept) {
  tOrigin const origin("component", file);
  tStatus2 status;
  OXDIAG_SET_STATUS(status, kError);
  return status.hasDetail() && __builtin_strcmp(status.getFileName(), kept) == 0;
}

// An error whose detail nobody else has.
class tFailure {
 public:
  tFailure() { OXDIAG_SET_STATUS(status, kError); }

  tOrigin origin{"slotbus", "rack.cpp"};
  tStatus2 status;
};

}  // namespace

TEST(Status, IsSuccessWithoutDetailAtFirst) {
  tStatus2 const status;
  EXPECT_EQ(status.getCode(), 0);
  EXPECT_FALSE(status.isError());
  EXPECT_FALSE(status.hasDetail());
}

TEST(Status, HoldsThePlainCodeItIsMadeOf) {
  EXPECT_EQ(tStatus2(kError).getCode(), kError);
  EXPECT_EQ(tStatus2(kWarning).getCode(), kWarning);
  EXPECT_FALSE(tStatus2(kError).hasDetail());
}

TEST(Status, IsAnErrorWhenItsCodeIsNegative) {
  EXPECT_TRUE(tStatus2(-1).isError());
  EXPECT_TRUE(tStatus2(-2147483647 - 1).isError());
  EXPECT_FALSE(tStatus2(1).isError());
  EXPECT_FALSE(tStatus2(2147483647).isError());
}

TEST(Status, WithoutDetailReadsAsEmpty) {
  tStatus2 const status(kError);
  EXPECT_STREQ(status.getComponentName(), "");
  EXPECT_STREQ(status.getFileName(), "");
  EXPECT_EQ(status.getLineNumber(), u32{0});
  EXPECT_TRUE(status.getDescription() == nullptr);
  EXPECT_EQ(countAddresses(status), u32{0});
}

TEST(Status, WithoutDetailTakesNothingFromTheHeap) {
  tStatus2 const status(kError);
  tStatus2 copy(status);
  copy = status;
  copy.setCode(kWarning);
  EXPECT_TRUE(isHeapUnused());
}

TEST(Status, WithDetailTakesOneRecordOf240Bytes) {
  tFailure const failure;
  EXPECT_EQ(theHeap().getAllocatedBlocks(), u32{1});
  EXPECT_EQ(theHeap().getUsedUnits(), kRecordUnits);
}

TEST(Status, GivesItsRecordBackAtTheEndOfItsLife) {
  {
    tFailure const failure;
    EXPECT_TRUE(failure.status.hasDetail());
  }
  EXPECT_TRUE(isHeapUnused());
}

TEST(Status, KeepsItsOrigin) {
  tOrigin const origin("slotbus", "rack.cpp");
  tStatus2 status;
  u32 const line = __LINE__ + 1;
  OXDIAG_SET_STATUS(status, kError);
  EXPECT_EQ(status.getCode(), kError);
  EXPECT_STREQ(status.getComponentName(), "slotbus");
  EXPECT_STREQ(status.getFileName(), "rack.cpp");
  EXPECT_EQ(status.getLineNumber(), line);
  EXPECT_TRUE(status.getDescription() == nullptr);
}

TEST(Status, KeepsTheCallStack) {
  tFailure const failure;
  EXPECT_GE(countAddresses(failure.status), u32{3});
  u64 addresses[tStatus2::kStackTraceLength];
  failure.status.getStackTrace(addresses);
  EXPECT_NE(addresses[0], u64{0});
}

TEST(Status, KeepsNoCallStackWhenItIsNotWanted) {
  tOrigin const origin("slotbus", "rack.cpp");
  tStatus2 status;
  OXDIAG_SET_STATUS_WITHOUT_STACK_TRACE(status, kError);
  EXPECT_TRUE(status.hasDetail());
  EXPECT_EQ(countAddresses(status), u32{0});
  EXPECT_STREQ(status.getComponentName(), "slotbus");
}

TEST(Status, KeepsAComponentNameOf23CharactersWhole) {
  EXPECT_TRUE(keepsComponent("", ""));
  EXPECT_TRUE(keepsComponent("abcdefghijklmnopqrstuv", "abcdefghijklmnopqrstuv"));
  EXPECT_TRUE(keepsComponent("abcdefghijklmnopqrstuvw", "abcdefghijklmnopqrstuvw"));
}

TEST(Status, KeepsTheLast23CharactersOfALongerComponentName) {
  EXPECT_TRUE(keepsComponent("abcdefghijklmnopqrstuvwx", "bcdefghijklmnopqrstuvwx"));
  tLongText<31> const name;
  EXPECT_TRUE(keepsComponent(name.get(), name.tail(23)));
}

TEST(Status, KeepsAFileNameOf100CharactersWhole) {
  EXPECT_TRUE(keepsFile("", ""));
  EXPECT_TRUE(keepsFile(tLongText<100>().get(), tLongText<100>().get()));
  EXPECT_TRUE(keepsFile(tLongText<101>().get(), tLongText<101>().get()));
}

TEST(Status, KeepsTheLast100CharactersOfALongerFileName) {
  tLongText<102> const path;
  EXPECT_TRUE(keepsFile(path.get(), path.tail(100)));
  tLongText<151> const longPath;
  EXPECT_TRUE(keepsFile(longPath.get(), longPath.tail(100)));
}

TEST(Status, TakesNullNamesAsEmpty) {
  EXPECT_TRUE(keepsComponent(nullptr, ""));
  EXPECT_TRUE(keepsFile(nullptr, ""));
}

TEST(Status, CopiesItsNames) {
  char component[] = "slotbus";
  tOrigin const origin(component, "rack.cpp");
  tStatus2 status;
  OXDIAG_SET_STATUS(status, kError);
  component[0] = 'X';
  EXPECT_STREQ(status.getComponentName(), "slotbus");
}

TEST(Status, KeepsTheOriginOfAWarningToo) {
  tOrigin const origin("slotbus", "rack.cpp");
  tStatus2 status;
  OXDIAG_SET_STATUS(status, kWarning);
  EXPECT_EQ(status.getCode(), kWarning);
  EXPECT_TRUE(status.hasDetail());
  EXPECT_FALSE(status.isError());
}

TEST(StatusCopies, ShareTheDetail) {
  tFailure const failure;
  tStatus2 const copy(failure.status);
  EXPECT_EQ(copy.getCode(), kError);
  EXPECT_TRUE(hasSameDetail(copy, failure.status));
  EXPECT_EQ(theHeap().getAllocatedBlocks(), u32{1});
}

TEST(StatusCopies, OutliveTheOriginal) {
  tStatus2 copy;
  {
    tFailure const failure;
    copy = failure.status;
  }
  EXPECT_STREQ(copy.getComponentName(), "slotbus");
  EXPECT_EQ(theHeap().getAllocatedBlocks(), u32{1});
  copy = tStatus2();
  EXPECT_TRUE(isHeapUnused());
}

TEST(StatusCopies, LastOneGivesTheRecordBack) {
  tFailure failure;
  {
    tStatus2 const first(failure.status);
    tStatus2 const second(first);
    tStatus2 third;
    third = second;
    failure.status = tStatus2();
    EXPECT_EQ(theHeap().getAllocatedBlocks(), u32{1});
  }
  EXPECT_TRUE(isHeapUnused());
}

TEST(StatusCopies, AssignmentDropsTheOldDetail) {
  tFailure const one;
  tFailure other;
  EXPECT_EQ(theHeap().getAllocatedBlocks(), u32{2});
  other.status = one.status;
  EXPECT_EQ(theHeap().getAllocatedBlocks(), u32{1});
  EXPECT_TRUE(hasSameDetail(one.status, other.status));
}

TEST(StatusCopies, AssignmentOfAPlainCodeDropsTheDetail) {
  tFailure failure;
  failure.status = tStatus2(kOtherError);
  EXPECT_EQ(failure.status.getCode(), kOtherError);
  EXPECT_FALSE(failure.status.hasDetail());
  EXPECT_TRUE(isHeapUnused());
}

TEST(StatusCopies, AssignmentToItselfKeepsTheDetail) {
  tFailure failure;
  tStatus2 const& itself = failure.status;
  failure.status = itself;
  EXPECT_EQ(failure.status.getCode(), kError);
  EXPECT_STREQ(failure.status.getComponentName(), "slotbus");
  EXPECT_EQ(theHeap().getAllocatedBlocks(), u32{1});
}

TEST(StatusCopies, AssignmentBetweenSharersKeepsTheDetail) {
  tFailure failure;
  tStatus2 const copy(failure.status);
  failure.status = copy;
  EXPECT_TRUE(hasSameDetail(copy, failure.status));
  EXPECT_EQ(theHeap().getAllocatedBlocks(), u32{1});
}

TEST(StatusCopies, AreMadeInAFullHeap) {
  tFailure const failure;
  tFullHeap const full;
  tStatus2 const copy(failure.status);
  EXPECT_TRUE(hasSameDetail(copy, failure.status));
}

TEST(StatusPlainCode, ReplacesAnyCode) {
  tStatus2 status(kError);
  status.setCode(kOtherError);
  EXPECT_EQ(status.getCode(), kOtherError);
  status.setCode(0);
  EXPECT_EQ(status.getCode(), 0);
}

TEST(StatusPlainCode, DropsTheDetailOfAnotherCode) {
  tFailure failure;
  failure.status.setCode(kOtherError);
  EXPECT_FALSE(failure.status.hasDetail());
  EXPECT_TRUE(isHeapUnused());
}

TEST(StatusPlainCode, KeepsTheDetailOfTheSameCode) {
  tFailure failure;
  failure.status.setCode(kError);
  EXPECT_STREQ(failure.status.getComponentName(), "slotbus");
}

TEST(StatusPlainCode, LeavesTheDetailToTheCopies) {
  tFailure failure;
  tStatus2 const copy(failure.status);
  failure.status.setCode(0);
  EXPECT_STREQ(copy.getComponentName(), "slotbus");
  EXPECT_EQ(copy.getCode(), kError);
}
