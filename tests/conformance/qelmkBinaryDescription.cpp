// The library's own objects in binary streams: whole, cut at every byte, and with every byte
// changed.

#include "conformance/harness.h"
#include "oxdiagk/tStatus2Heap.h"
#include "qelmk/qelmk.h"
#include "support/sampleDescription.h"
#include "support/statusOrigin.h"
#include "support/tBlindReader.h"

namespace {

using nOXDIAG100::tStatus2;
using nOXDIAG100::tStatus2Description;
using nOXDIAG100::tStatus2Heap;
using nQELM100::tBinaryObjectReader;
using nQELM100::tBinaryObjectWriter;

constexpr u32 kBufferSize = 4096;
constexpr u8 kChanges[] = {0x01, 0xFF};
constinit u8 stored[kBufferSize] = {};

u32 freeUnits() {
  i32 status = 0;
  return tStatus2Heap::getHeap(status)->getFreeUnits();
}

tStatus2Description const* descriptionOf(tStatus2 const& status2) {
  return nQELM100::dynamicCast<tStatus2Description>(status2.getDescription());
}

// A status with everything; its stream is in `stored`. Returns its size, 0 on failure.
size_t writeEverything(tStatus2& status2) {
  tStatus2Description description;
  if (!sample::describeEverything(description)) return 0;
  tOrigin const origin("component", "file.cpp");
  OXDIAG_SET_STATUS_WITH_DESCRIPTION_WITHOUT_STACK_TRACE(status2, -100, description);
  tBinaryObjectWriter writer(stored, sizeof(stored));
  i32 status = 0;
  status2.writeExternal(writer, status);
  writer.finish(status);
  return status == 0 ? writer.getSize() : 0;
}

i32 readFrom(size_t size, tStatus2& read) {
  i32 status = 0;
  tBinaryObjectReader reader(stored, size, status);
  read.readExternal(reader, status);
  return status;
}

}  // namespace

TEST(QelmkBinaryDescription, AStatusWithEveryKindOfValueIsReadBack) {
  tStatus2 written;
  size_t const size = writeEverything(written);
  ASSERT_NE(size_t{0}, size);
  tStatus2 read;
  EXPECT_EQ(i32{0}, readFrom(size, read));
  ASSERT_TRUE(descriptionOf(read) != nullptr);
  EXPECT_TRUE(*descriptionOf(read) == *descriptionOf(written));
}

TEST(QelmkBinaryDescription, WhatIsReadIsWrittenAsTheSameBytes) {
  tStatus2 written;
  size_t const size = writeEverything(written);
  tStatus2 read;
  ASSERT_EQ(i32{0}, readFrom(size, read));
  static u8 again[kBufferSize];
  tBinaryObjectWriter writer(again, sizeof(again));
  i32 status = 0;
  read.writeExternal(writer, status);
  EXPECT_EQ(size, writer.getSize());
  EXPECT_TRUE(__builtin_memcmp(stored, again, size) == 0);
}

TEST(QelmkBinaryDescription, EveryCutStreamIsAnErrorAndLeavesNothing) {
  u32 const before = freeUnits();
  size_t size = 0;
  {
    tStatus2 written;
    size = writeEverything(written);
  }
  ASSERT_NE(size_t{0}, size);
  for (size_t cut = 0; cut < size; ++cut) {
    {
      tStatus2 read;
      EXPECT_LT(readFrom(cut, read), 0);
    }
    EXPECT_EQ(before, freeUnits());
  }
}

TEST(QelmkBinaryDescription, AReaderThatFailsAnywhereLeavesNothing) {
  u32 const before = freeUnits();
  size_t size = 0;
  {
    tStatus2 written;
    size = writeEverything(written);
  }
  ASSERT_NE(size_t{0}, size);
  for (size_t cut = 0; cut <= size; ++cut) {
    {
      i32 status = 0;
      tBlindReader reader(stored, cut, status);
      tStatus2 read;
      read.readExternal(reader, status);
      EXPECT_EQ(status, cut < size ? nQELM100::kStatusStreamEnded : 0);
    }
    EXPECT_EQ(before, freeUnits());
  }
}

TEST(QelmkBinaryDescription, AReaderThatCannotTellItsLengthReadsTheSame) {
  tStatus2 written;
  size_t const size = writeEverything(written);
  i32 status = 0;
  tBlindReader reader(stored, size, status);
  tStatus2 read;
  read.readExternal(reader, status);
  EXPECT_EQ(status, 0);
  ASSERT_TRUE(descriptionOf(read) != nullptr);
  EXPECT_TRUE(*descriptionOf(read) == *descriptionOf(written));
}

TEST(QelmkBinaryDescription, AChangedByteLeavesNothing) {
  u32 const before = freeUnits();
  size_t size = 0;
  {
    tStatus2 written;
    size = writeEverything(written);
  }
  ASSERT_NE(size_t{0}, size);
  for (size_t place = 0; place < size; ++place) {
    for (u8 const change : kChanges) {
      stored[place] ^= change;
      {
        tStatus2 read;
        readFrom(size, read);
      }
      stored[place] ^= change;
      EXPECT_EQ(before, freeUnits());
    }
  }
}
