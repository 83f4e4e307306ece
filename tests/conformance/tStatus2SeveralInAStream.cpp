// Several statuses in one stream, with less and less room in the status heap: whatever can be kept
// of the first, the others are read from where they begin.

#include "conformance/harness.h"
#include "oxdiagk/tStatus2Description.h"
#include "qelmk/qelmk.h"
#include "support/callerCodes.h"
#include "support/heapRecord.h"
#include "support/statusForms.h"
#include "support/statusOrigin.h"
#include "support/tBlindReader.h"
#include "support/tRegistration.h"
#include "support/tTestDescription.h"
#include "support/tTestReportable.h"
#include "vexk/placementNew.h"

using nOXDIAG100::tStatus2;
using nOXDIAG100::tStatus2Description;
using nQELM100::tBinaryObjectReader;
using nQELM100::tBinaryObjectWriter;

namespace {

constexpr i32 kFirstCode = -61007;
constexpr i32 kLastCode = -61008;
constexpr u32 kCapacity = 2048;

// A status with `code`, a detail and a description of two items, and a plain one.
class tStream {
 public:
  explicit tStream(i32 code = kFirstCode) {
    tRegistration<tTestReportable> const registration;
    i32 status = 0;
    tBinaryObjectWriter writer(bytes, sizeof(bytes));
    writeDescribed(writer, code, status);
    sizeOfFirst = writer.getSize();
    tStatus2(kLastCode).writeExternal(writer, status);
    writer.finish(status);
    EXPECT_EQ(status, 0);
    size = writer.getSize();
  }

  static constinit u8 bytes[kCapacity];
  size_t sizeOfFirst = 0;
  size_t size = 0;

 private:
  static void writeDescribed(tBinaryObjectWriter& writer, i32 code, i32& status) {
    tStatus2Description description;
    EXPECT_EQ(addItems(description, 2), 0);
    tStatus2 first;
    OXDIAG_SET_STATUS_WITH_DESCRIPTION(first, code, description);
    first.writeExternal(writer, status);
  }
};
constinit u8 tStream::bytes[kCapacity] = {};

// A heap with one free block of so many units, for the length of a test; 0 is a full heap.
class tCrampedHeap {
 public:
  explicit tCrampedHeap(u32 units) {
    void* const room = units == 0 ? nullptr : takeBlock(static_cast<i32>((units - 1) * 16));
    new (&full) tFullHeap;
    if (room != nullptr) giveBack(room);
  }
  ~tCrampedHeap() { full.giveAllBack(); }
  tCrampedHeap(tCrampedHeap const&) = delete;
  tCrampedHeap& operator=(tCrampedHeap const&) = delete;

 private:
  union {
    tFullHeap full;
  };
};

}  // namespace

TEST(StatusesInAStream, TheSecondIsReadWhenTheFirstCannotBeKept) {
  tRegistration<tTestReportable> const registration;
  tStream const stream;
  tFullHeap const full;
  i32 status = 0;
  tBinaryObjectReader reader(stream.bytes, stream.size, status);
  tStatus2 first;
  tStatus2 second;
  first.readExternal(reader, status);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(reader.getPosition(), stream.sizeOfFirst);
  EXPECT_EQ(first.getCode(), kFirstCode);
  EXPECT_FALSE(first.hasDetail());
  second.readExternal(reader, status);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(second.getCode(), kLastCode);
  EXPECT_TRUE(reader.isAtEnd());
}

TEST(StatusesInAStream, AWarningThatCannotBeKeptIsOutOfMemoryAndPassedOver) {
  tRegistration<tTestReportable> const registration;
  tStream const stream(kWarning);
  tFullHeap const full;
  i32 status = 0;
  tBinaryObjectReader reader(stream.bytes, stream.size, status);
  tStatus2 first;
  first.readExternal(reader, status);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(first.getCode(), kStatusOutOfMemory);
  EXPECT_EQ(reader.getPosition(), stream.sizeOfFirst);
}

TEST(StatusesInAStream, TheSecondIsReadWhateverRoomTheFirstFinds) {
  tRegistration<tTestReportable> const registration;
  tStream const stream;
  u32 described = 0;
  u32 withoutDescription = 0;
  u32 withoutDetail = 0;
  for (u32 units = 0; units < 40; ++units) {
    tCrampedHeap const heap(units);
    i32 status = 0;
    tBinaryObjectReader reader(stream.bytes, stream.size, status);
    tStatus2 first;
    first.readExternal(reader, status);
    EXPECT_EQ(first.getCode(), kFirstCode);
    EXPECT_EQ(reader.getPosition(), stream.sizeOfFirst);
    bool const isDescribed = first.getDescription() != nullptr;
    EXPECT_EQ(status, first.hasDetail() && !isDescribed ? kStatusOutOfMemory : 0);
    described += isDescribed ? 1 : 0;
    withoutDescription += first.hasDetail() && !isDescribed ? 1 : 0;
    withoutDetail += first.hasDetail() ? 0 : 1;
    status = 0;
    tStatus2 second;
    second.readExternal(reader, status);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(second.getCode(), kLastCode);
  }
  EXPECT_GT(described, u32{0});
  EXPECT_GT(withoutDescription, u32{0});
  EXPECT_EQ(withoutDetail, u32{16});
  EXPECT_TRUE(isHeapUnused());
}

TEST(StatusesInAStream, ADetailWhoseDescriptionFindsNoRoomHasItsWholeCallStack) {
  tRegistration<tTestReportable> const registration;
  tStream const stream;
  i32 status = 0;
  tBinaryObjectReader reader(stream.bytes, stream.size, status);
  tStatus2 whole;
  whole.readExternal(reader, status);
  tCrampedHeap const heap(16);
  tBinaryObjectReader again(stream.bytes, stream.size, status);
  tStatus2 first;
  first.readExternal(again, status);
  EXPECT_EQ(status, kStatusOutOfMemory);
  u64 addresses[tStatus2::kStackTraceLength];
  u64 expected[tStatus2::kStackTraceLength];
  first.getStackTrace(addresses);
  whole.getStackTrace(expected);
  EXPECT_TRUE(__builtin_memcmp(addresses, expected, sizeof(addresses)) == 0);
}

TEST(StatusesInAStream, TheSecondIsReadWhenTheFirstHasADescriptionOfAnUnknownClass) {
  tStream const stream;
  i32 status = 0;
  tBinaryObjectReader reader(stream.bytes, stream.size, status);
  tStatus2 first;
  first.readExternal(reader, status);
  EXPECT_EQ(status, nQELM100::kStatusClassUnknown);
  EXPECT_EQ(reader.getPosition(), stream.sizeOfFirst);
  status = 0;
  tStatus2 second;
  second.readExternal(reader, status);
  EXPECT_EQ(second.getCode(), kLastCode);
}

TEST(StatusesInAStream, ADescriptionOfAnUnknownClassIsReportedInAFullHeapToo) {
  u8 bytes[512];
  i32 status = 0;
  tBinaryObjectWriter writer(bytes, sizeof(bytes));
  {
    tRegistration<tTestDescription> const registration;
    tStatus2 described;
    OXDIAG_SET_STATUS_WITH_DESCRIPTION(described, kFirstCode, tTestDescription(42));
    described.writeExternal(writer, status);
    writer.finish(status);
    ASSERT_EQ(status, 0);
  }
  tFullHeap const full;
  tBinaryObjectReader reader(bytes, writer.getSize(), status);
  tStatus2 first;
  first.readExternal(reader, status);
  EXPECT_EQ(status, nQELM100::kStatusClassUnknown);
  EXPECT_TRUE(reader.isAtEnd());
}

TEST(StatusesInAStream, EveryCutFirstIsReportedInAFullHeapToo) {
  tRegistration<tTestReportable> const registration;
  tStream const stream;
  tFullHeap const full;
  for (size_t size = 8; size < stream.sizeOfFirst; ++size) {
    i32 status = 0;
    tBinaryObjectReader reader(stream.bytes, size, status);
    tStatus2 first;
    first.readExternal(reader, status);
    EXPECT_EQ(status, nQELM100::kStatusStreamEnded);
    EXPECT_FALSE(first.hasDetail());
  }
}

TEST(StatusesInAStream, AReaderThatCannotPassOverAnObjectReportsTheDescription) {
  tRegistration<tTestReportable> const registration;
  tStream const stream;
  tFullHeap const full;
  i32 status = 0;
  tBlindReader reader(stream.bytes, stream.size, status);
  tStatus2 first;
  first.readExternal(reader, status);
  EXPECT_EQ(status, kStatusOutOfMemory);
  EXPECT_FALSE(first.hasDetail());
}
