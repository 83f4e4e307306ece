// Statuses when the heap is full.

#include "conformance/harness.h"
#include "support/callerCodes.h"
#include "support/heapRecord.h"
#include "support/statusOrigin.h"
#include "support/tTestDescription.h"

using nOXDIAG100::tStatus2;

TEST(StatusInFullHeap, KeepsAnErrorCode) {
  tFullHeap const full;
  tStatus2 status;
  OXDIAG_SET_STATUS(status, kError);
  EXPECT_EQ(status.getCode(), kError);
  EXPECT_FALSE(status.hasDetail());
}

TEST(StatusInFullHeap, TurnsAWarningIntoOutOfMemory) {
  tFullHeap const full;
  tStatus2 status;
  OXDIAG_SET_STATUS(status, kWarning);
  EXPECT_EQ(status.getCode(), kStatusOutOfMemory);
  EXPECT_FALSE(status.hasDetail());
}

TEST(StatusInFullHeap, DoesTheSameWithoutStackTrace) {
  tFullHeap const full;
  tStatus2 error;
  tStatus2 warning;
  OXDIAG_SET_STATUS_WITHOUT_STACK_TRACE(error, kError);
  OXDIAG_SET_STATUS_WITHOUT_STACK_TRACE(warning, kWarning);
  EXPECT_EQ(error.getCode(), kError);
  EXPECT_EQ(warning.getCode(), kStatusOutOfMemory);
}

TEST(StatusInFullHeap, IsSetAgainInThePlaceOfItsOwnRecord) {
  tOrigin const origin("slotbus", "rack.cpp");
  tStatus2 status;
  OXDIAG_SET_STATUS(status, kWarning);
  tFullHeap const full;
  OXDIAG_SET_STATUS(status, kError);
  EXPECT_EQ(status.getCode(), kError);
  EXPECT_TRUE(status.hasDetail());
}

TEST(StatusInFullHeap, IsSetAgainWithADescriptionThatIsAnothers) {
  tTestDescription const description(42);
  tStatus2 status;
  OXDIAG_SET_STATUS(status, kWarning);
  tFullHeap const full;
  OXDIAG_SET_STATUS_WITH_DESCRIPTION(status, kError, description);
  EXPECT_EQ(status.getCode(), kError);
  EXPECT_TRUE(status.hasDetail());
}

TEST(StatusInFullHeap, IsNotSetAgainInThePlaceOfASharedRecord) {
  tStatus2 status;
  OXDIAG_SET_STATUS(status, kWarning);
  tStatus2 const copy(status);
  tFullHeap const full;
  OXDIAG_SET_STATUS(status, kError);
  EXPECT_EQ(status.getCode(), kError);
  EXPECT_FALSE(status.hasDetail());
  EXPECT_TRUE(copy.hasDetail());
}

TEST(StatusInFullHeap, The65thErrorHasNoDetail) {
  tStatus2 statuses[65];
  for (tStatus2& status : statuses) OXDIAG_SET_STATUS(status, kError);
  u32 withDetail = 0;
  for (tStatus2& status : statuses) withDetail += status.hasDetail() ? 1 : 0;
  EXPECT_EQ(withDetail, u32{64});
  EXPECT_FALSE(statuses[64].hasDetail());
  EXPECT_EQ(statuses[64].getCode(), kError);
  for (tStatus2& status : statuses) status.setCode(0);
  EXPECT_TRUE(isHeapUnused());
}

TEST(StatusInFullHeap, HasADetailWithoutDescriptionWhenOnlyThatFindsNoRoom) {
  tTestDescription const description(42);
  void* const record = takeBlock(240);
  tFullHeap const full;
  giveBack(record);
  tStatus2 status;
  OXDIAG_SET_STATUS_WITH_DESCRIPTION(status, kError, description);
  EXPECT_EQ(status.getCode(), kError);
  EXPECT_TRUE(status.hasDetail());
  EXPECT_TRUE(status.getDescription() == nullptr);
}

TEST(StatusInFullHeap, GetsNoDescriptionLater) {
  tTestDescription const description(42);
  tStatus2 status;
  OXDIAG_SET_STATUS(status, kError);
  tFullHeap const full;
  EXPECT_EQ(status.setDescription(description), u32{0});
  EXPECT_TRUE(status.getDescription() == nullptr);
  EXPECT_EQ(status.getCode(), kError);
}

TEST(StatusInFullHeap, GetsNoDescriptionForAPlainCode) {
  tTestDescription const description(42);
  tFullHeap const full;
  tStatus2 error(kError);
  tStatus2 warning(kWarning);
  EXPECT_EQ(error.setDescription(description), u32{0});
  EXPECT_EQ(warning.setDescription(description), u32{0});
  EXPECT_EQ(error.getCode(), kError);
  EXPECT_EQ(warning.getCode(), kStatusOutOfMemory);
  EXPECT_FALSE(error.hasDetail());
}

TEST(StatusInFullHeap, AttachesNothingWhenOnlyTheDescriptionFindsNoRoom) {
  tTestDescription const description(42);
  void* const record = takeBlock(240);
  tFullHeap const full;
  giveBack(record);
  tStatus2 status(kError);
  EXPECT_EQ(status.setDescription(description), u32{0});
  EXPECT_TRUE(status.hasDetail());
  EXPECT_TRUE(status.getDescription() == nullptr);
}
