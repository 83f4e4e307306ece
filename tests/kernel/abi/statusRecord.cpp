// The record of a status as other modules see it: where its fields lie, and which virtual operation
// stands in which slot.

#include "conformance/harness.h"
#include "oxdiagk/tStatus2.h"
#include "support/heapRecord.h"
#include "support/statusForms.h"
#include "support/statusOrigin.h"
#include "support/tTestDescription.h"

namespace {

using nOXDIAG100::iStatus2Description;
using nOXDIAG100::tStatus2;
using nQELM100::iObjectReader;
using nQELM100::iObjectWriter;

constexpr i32 kError = -61007;

// Slots of the record's table, from 0.
enum tSlot : u32 {
  kDestroy,
  kAddReference,
  kRelease,
  kGetComponentName,
  kGetFileName,
  kGetLineNumber,
  kGetStackTraceAddress,
  kGetDescription,
  kSetDescription,
  kGetCode,
  kWriteExternal,
  kReadExternal,
  kGetStackTrace,
};

using tDestroyCall = void*(void* record, u32 flags);
using tReferenceCall = void(void* record);
using tTextCall = char const*(void const* record);
using tNumberCall = u32(void const* record);
using tAddressCall = u64*(void* record);
using tDescriptionCall = iStatus2Description const*(void const* record);
using tDescribeCall = u32(void* record, iStatus2Description const* description);
using tCodeCall = i32(void const* record);
using tWriteCall = void(void const* record, iObjectWriter* writer, i32* status);
using tReadCall = void(void* record, iObjectReader* reader, i32* status);
using tStackTraceCall = void(void const* record, u64* addresses);

// A failure, and its record as bytes.
class tRecord {
 public:
  tRecord() {
    OXDIAG_SET_STATUS(status, kError);
    __builtin_memcpy(&address, &status, sizeof address);
  }

  template <class T>
  T at(u32 offset) const {
    T value;
    __builtin_memcpy(&value, address + offset, sizeof value);
    return value;
  }

  template <class tCall>
  tCall* slot(tSlot index) const {
    return reinterpret_cast<tCall*>((*reinterpret_cast<void***>(address))[index]);
  }

  tOrigin origin{"slotbus", "rack.cpp"};
  tStatus2 status;
  u8* address;
};

}  // namespace

TEST(StatusRecord, AStatusIsAPointerToTheRecordAndTheCode) {
  tRecord const record;
  i32 code = 0;
  __builtin_memcpy(&code, reinterpret_cast<u8 const*>(&record.status) + 8, sizeof code);
  EXPECT_EQ(code, kError);
  EXPECT_EQ(sizeof(tStatus2), size_t{16});
  EXPECT_EQ(offsetInArena(record.address), u64{16160});
}

TEST(StatusRecord, HasItsFieldsInOrder) {
  tRecord record;
  tTestDescription const description(42);
  record.status.setDescription(description);
  tStatus2 const copy(record.status);
  EXPECT_EQ(record.at<u32>(8), u32{2});
  EXPECT_STREQ(reinterpret_cast<char const*>(record.address + 12), "slotbus");
  EXPECT_STREQ(reinterpret_cast<char const*>(record.address + 36), "rack.cpp");
  EXPECT_EQ(record.at<u32>(140), record.status.getLineNumber());
  u64 addresses[tStatus2::kStackTraceLength];
  record.status.getStackTrace(addresses);
  EXPECT_EQ(__builtin_memcmp(record.address + 144, addresses, sizeof addresses), 0);
  EXPECT_EQ(record.at<u64>(224), reinterpret_cast<u64>(record.status.getDescription()));
  EXPECT_EQ(record.at<i32>(232), kError);
}

TEST(StatusRecord, Takes240Bytes) {
  tRecord const record;
  EXPECT_EQ(headerOf(record.address)->units, u32{16});
}

TEST(StatusRecord, CountsReferencesInSlots1And2) {
  tRecord const record;
  record.slot<tReferenceCall>(kAddReference)(record.address);
  EXPECT_EQ(record.at<u32>(8), u32{2});
  record.slot<tReferenceCall>(kRelease)(record.address);
  EXPECT_EQ(record.at<u32>(8), u32{1});
}

TEST(StatusRecord, IsDestroyedByItsLastRelease) {
  tRecord record;
  tStatus2 const copy(record.status);
  record.status.setCode(0);
  record.slot<tReferenceCall>(kAddReference)(record.address);
  record.slot<tReferenceCall>(kRelease)(record.address);
  EXPECT_EQ(theHeap().getAllocatedBlocks(), u32{1});
}

TEST(StatusRecord, DestructorInSlot0GivesTheMemoryBack) {
  tRecord record;
  record.slot<tDestroyCall>(kDestroy)(record.address, 1);
  EXPECT_TRUE(isHeapUnused());
  // The status has lost its record to that.
  u8* const none = nullptr;
  __builtin_memcpy(static_cast<void*>(&record.status), &none, sizeof none);
}

TEST(StatusRecord, TellsItsOriginInSlots3To7) {
  tRecord record;
  EXPECT_STREQ(record.slot<tTextCall>(kGetComponentName)(record.address), "slotbus");
  EXPECT_STREQ(record.slot<tTextCall>(kGetFileName)(record.address), "rack.cpp");
  EXPECT_EQ(record.slot<tNumberCall>(kGetLineNumber)(record.address),
            record.status.getLineNumber());
  EXPECT_TRUE(reinterpret_cast<u8*>(record.slot<tAddressCall>(kGetStackTraceAddress)(
                  record.address)) == record.address + 144);
  EXPECT_TRUE(record.slot<tDescriptionCall>(kGetDescription)(record.address) == nullptr);
}

TEST(StatusRecord, TakesADescriptionInSlot8) {
  tRecord record;
  tTestDescription const description(42);
  EXPECT_EQ(record.slot<tDescribeCall>(kSetDescription)(record.address, &description), u32{1});
  EXPECT_EQ(numberOf(record.slot<tDescriptionCall>(kGetDescription)(record.address)), 42);
}

TEST(StatusRecord, TellsItsCodeInSlot9) {
  tRecord const record;
  EXPECT_EQ(record.slot<tCodeCall>(kGetCode)(record.address), kError);
}

TEST(StatusRecord, WritesAndReadsItsFormInSlots10And11) {
  tRecord record;
  tItemStream& stream = cleanStream();
  i32 status = 0;
  record.slot<tWriteCall>(kWriteExternal)(record.address, &stream, &status);
  EXPECT_EQ(stream.getCount(), u32{kFormCount - kFormDetailLength});
  stream.replace(kFormLine - kFormDetailLength, 4711);
  record.slot<tReadCall>(kReadExternal)(record.address, &stream, &status);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(record.status.getLineNumber(), u32{4711});
}

TEST(StatusRecord, IsEmptyWhereTheStreamEndsEarly) {
  tRecord record;
  tTestDescription const description(42);
  record.status.setDescription(description);
  i32 status = 0;
  record.slot<tReadCall>(kReadExternal)(record.address, &cleanStream(), &status);
  EXPECT_EQ(status, tItemStream::kStatusEnded);
  u8 const zeros[232 - 12] = {};
  EXPECT_EQ(__builtin_memcmp(record.address + 12, zeros, sizeof zeros), 0);
  EXPECT_EQ(record.at<i32>(232), 0);
}

TEST(StatusRecord, CopiesItsStackTraceInSlot12) {
  tRecord const record;
  u64 addresses[tStatus2::kStackTraceLength] = {};
  record.slot<tStackTraceCall>(kGetStackTrace)(record.address, addresses);
  EXPECT_EQ(__builtin_memcmp(record.address + 144, addresses, sizeof addresses), 0);
  EXPECT_NE(addresses[0], u64{0});
}

TEST(StatusRecord, ADescriptionWritesItsTextInTheFirstSlotOfItsOwnFace) {
  using tTextIntoCall = void(void const* face, char* buffer, u32 size);
  tTalkingDescription const description(3);
  iStatus2Description const* const face = &description;
  char text[8] = "";
  auto* const toString =
      reinterpret_cast<tTextIntoCall*>((*reinterpret_cast<void** const*>(face))[0]);
  toString(face, text, sizeof text);
  EXPECT_STREQ(text, "abc");
}
