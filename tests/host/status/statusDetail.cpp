// The detail of a status by itself, and the memory that it is in.

#include "status/tStatus2Implementation.h"

#include <gtest/gtest.h>

#include "oxdiagk/statusCodes.h"
#include "status/startedHeap.h"
#include "status/statusMemory.h"
#include "status/tStatusText.h"
#include "support/callerCodes.h"
#include "support/tItemStream.h"
#include "support/tTestDescription.h"

namespace {

using nOXDIAG100::giveStatusMemoryBack;
using nOXDIAG100::kStatusHeapFull;
using nOXDIAG100::takeStatusMemory;
using nOXDIAG100::tStatus2Heap;
using nOXDIAG100::tStatus2Implementation;
using nOXDIAG100::tStatusText;

}  // namespace

TEST(StatusDetail, HasTheCodeThatItWasMadeFor) {
  tStartedHeap const heap;
  tStatus2Implementation const detail(kError, "rack", "rack.cpp", 7, nullptr);
  EXPECT_EQ(detail.getCode(), kError);
}

TEST(StatusDetail, ADescriptionTakesThePlaceOfTheOneBefore) {
  tStartedHeap const heap;
  i32 const before = tTestDescription::living;
  {
    tTestDescription const first(1);
    tTestDescription const second(2);
    tStatus2Implementation detail(kError, "rack", "rack.cpp", 7, &first);
    EXPECT_EQ(tTestDescription::living, before + 3);
    EXPECT_EQ(detail.setDescription(second), 1U);
    EXPECT_EQ(tTestDescription::living, before + 3);
    ASSERT_NE(detail.getDescription(), nullptr);
    EXPECT_EQ(static_cast<tTestDescription const*>(detail.getDescription())->number, 2);
  }
  EXPECT_EQ(tTestDescription::living, before);
  EXPECT_EQ(theHeap().getAllocatedBlocks(), 0U);
}

TEST(StatusDetail, AStreamThatEndsInFrontOfTheCodeLeavesNone) {
  tStartedHeap const heap;
  tItemStream& stream = cleanStream();
  stream.put({tItemStream::kU32, 0});
  tStatus2Implementation detail(kError, "rack", "rack.cpp", 7, nullptr);
  i32 status = 0;
  detail.readExternal(stream, status);
  EXPECT_EQ(status, tItemStream::kStatusEnded);
  EXPECT_EQ(detail.getCode(), 0);
  EXPECT_STREQ(detail.getComponentName(), "");
}

TEST(StatusText, IsEmptyAtFirst) {
  char buffer[] = "before";
  tStatusText const text(buffer, sizeof(buffer));
  EXPECT_STREQ(buffer, "");
  EXPECT_EQ(text.getRest(), buffer);
  EXPECT_EQ(text.getRestSize(), sizeof(buffer));
}

TEST(StatusMemory, WhatIsLargerThanTheHeapIsRefused) {
  tStartedHeap const heap;
  i32 status = 0;
  EXPECT_EQ(takeStatusMemory(tStatus2Heap::kPoolSize + 1, status), nullptr);
  EXPECT_EQ(status, kStatusHeapFull);
  status = kWarning;
  EXPECT_EQ(takeStatusMemory(~size_t{0}, status), nullptr);
  EXPECT_EQ(status, kStatusHeapFull);
}

TEST(StatusMemory, AnEarlierErrorStays) {
  tStartedHeap const heap;
  i32 status = kError;
  EXPECT_EQ(takeStatusMemory(tStatus2Heap::kPoolSize + 1, status), nullptr);
  EXPECT_EQ(status, kError);
  EXPECT_EQ(takeStatusMemory(16, status), nullptr);
  EXPECT_EQ(status, kError);
}

TEST(StatusMemory, WithoutAHeapThereIsNone) {
  tStartedPlatform const platform;
  i32 status = 0;
  EXPECT_EQ(takeStatusMemory(16, status), nullptr);
  EXPECT_EQ(status, kStatusHeapFull);
  giveStatusMemoryBack(nullptr);
}
