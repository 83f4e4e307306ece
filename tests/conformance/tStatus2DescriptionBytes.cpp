// A status with a description as bytes, from one end to the other.

#include "conformance/harness.h"
#include "oxdiagk/tIntrinsicTypeReportable.h"
#include "oxdiagk/tStatus2Description.h"
#include "qelmk/binaryStream.h"
#include "qelmk/dynamicCast.h"
#include "qelmk/statusCodes.h"
#include "qelmk/tBinaryObjectReader.h"
#include "qelmk/tBinaryObjectWriter.h"
#include "support/callerCodes.h"
#include "support/heapRecord.h"
#include "support/statusForms.h"
#include "support/statusOrigin.h"

using nOXDIAG100::tIntrinsicTypeReportable;
using nOXDIAG100::tStatus2;
using nOXDIAG100::tStatus2Description;
using nQELM100::tBinaryObjectReader;
using nQELM100::tBinaryObjectWriter;

namespace {

// The description of three items that the bytes below hold.
class tGolden {
 public:
  tGolden() {
    tStatus2 status;
    description.addHeader(10, status);
    description.addNewline(status);
    description.addReportItem(-2, tIntrinsicTypeReportable<i32>(0x1234, status), status);
    EXPECT_EQ(status.getCode(), 0);
  }

  tStatus2Description description;
};

constexpr char kGoldenBytes[] =
    "QELM\x01\0\0\0"
    "\x1F\0nOXDIAG100::tStatus2Description\x9C\0\0\0"
    "\x03\0\0\0"
    "\x0A\0\0\0\x01\0\0\0"
    "\x1C\0nOXDIAG100::tTitleReportable\0\0\0\0"
    "\xDF\0\0\0\x01\0\0\0"
    "\x21\0nOXDIAG100::tWhiteSpaceReportable\0\0\0\0"
    "\xFE\xFF\xFF\xFF\x01\0\0\0"
    "\x29\0nOXDIAG100::tIntrinsicTypeReportable<i32>\x08\0\0\0"
    "\x01\0\0\0\x34\x12\0\0";
constexpr size_t kGoldenSize = sizeof kGoldenBytes - 1;

// Bytes of the running test; too many for the stack.
constinit u8 bytes[1024] = {};

size_t writeGolden() {
  tGolden const golden;
  tBinaryObjectWriter writer(bytes, sizeof bytes);
  i32 code = 0;
  writer.writeObject(&golden.description, code);
  writer.finish(code);
  EXPECT_EQ(code, 0);
  return writer.getSize();
}

// A failure with the golden description.
size_t writeStatus() {
  tOrigin const origin("slotbus", "rack.cpp");
  tStatus2 status;
  OXDIAG_SET_STATUS_WITH_DESCRIPTION(status, kError, tGolden().description);
  tBinaryObjectWriter writer(bytes, sizeof bytes);
  i32 code = 0;
  status.writeExternal(writer, code);
  writer.finish(code);
  EXPECT_EQ(code, 0);
  return writer.getSize();
}

// Reads the description at the beginning of a stream, and compares it with the golden one.
bool isGolden(void const* stream, size_t size) {
  i32 code = 0;
  tBinaryObjectReader reader(stream, size, code);
  nQELM100::tObject* const object = reader.readObject(code);
  auto const* const description = nQELM100::dynamicCast<tStatus2Description>(object);
  bool const isEqual = description != nullptr && *description == tGolden().description;
  EXPECT_EQ(code, 0);
  if (object != nullptr) object->getClass(code).deleteInstance(object, code);
  return isEqual;
}

}  // namespace

TEST(DescriptionBytes, AreTheDocumentedOnes) {
  ASSERT_EQ(writeGolden(), kGoldenSize);
  for (size_t index = 0; index != kGoldenSize; ++index) {
    EXPECT_EQ(bytes[index], static_cast<u8>(kGoldenBytes[index]));
  }
}

TEST(DescriptionBytes, ComeBackAsAnEqualDescription) {
  EXPECT_TRUE(isGolden(kGoldenBytes, kGoldenSize));
  EXPECT_TRUE(isHeapUnused());
}

TEST(DescriptionBytes, CutAnywhereLeaveNothing) {
  for (size_t size = 0; size != kGoldenSize; ++size) {
    i32 code = 0;
    tBinaryObjectReader reader(kGoldenBytes, size, code);
    EXPECT_TRUE(reader.readObject(code) == nullptr);
    EXPECT_TRUE(code < 0);
  }
  EXPECT_TRUE(isHeapUnused());
}

TEST(DescriptionBytes, WithAHostileCountAreOutOfMemoryAtOnce) {
  size_t const size = writeGolden();
  // Behind the header, and the name and the length of the object.
  constexpr size_t kCount = nQELM100::kBinaryStreamHeaderSize + 2 + 31 + 4;
  ASSERT_EQ(bytes[kCount], u8{3});
  __builtin_memset(bytes + kCount, 0xFF, 4);
  i32 code = 0;
  tBinaryObjectReader reader(bytes, size, code);
  EXPECT_TRUE(reader.readObject(code) == nullptr);
  EXPECT_EQ(code, kStatusOutOfMemory);
  EXPECT_EQ(reader.getFailurePosition(), kCount + 4);
}

TEST(DescriptionBytes, OfAnUnknownReportableAreRefused) {
  size_t const size = writeGolden();
  ASSERT_EQ(size, kGoldenSize);
  for (size_t place = 0; place + 4 < size; ++place) {
    if (__builtin_memcmp(bytes + place, "tTitle", 6) == 0) bytes[place] = 'x';
  }
  i32 code = 0;
  tBinaryObjectReader reader(bytes, size, code);
  EXPECT_TRUE(reader.readObject(code) == nullptr);
  EXPECT_EQ(code, nQELM100::kStatusClassUnknown);
}

TEST(DescribedStatusBytes, ComeBackWithOriginAndItems) {
  size_t const size = writeStatus();
  ASSERT_GT(size, size_t{300});
  i32 code = 0;
  tBinaryObjectReader reader(bytes, size, code);
  tStatus2 status;
  status.readExternal(reader, code);
  EXPECT_EQ(code, 0);
  EXPECT_TRUE(reader.isAtEnd());
  EXPECT_EQ(status.getCode(), kError);
  EXPECT_STREQ(status.getComponentName(), "slotbus");
  EXPECT_STREQ(status.getFileName(), "rack.cpp");
  auto const* const description =
      nQELM100::dynamicCast<tStatus2Description>(status.getDescription());
  ASSERT_TRUE(description != nullptr);
  EXPECT_TRUE(*description == tGolden().description);
}

TEST(DescribedStatusBytes, CutAnywhereLeaveTheStatusWithoutDescriptionOrWhole) {
  size_t const size = writeStatus();
  ASSERT_GT(size, size_t{300});
  for (size_t length = 0; length != size; ++length) {
    i32 code = 0;
    tBinaryObjectReader reader(bytes, length, code);
    tStatus2 status;
    status.readExternal(reader, code);
    EXPECT_TRUE(code < 0);
    // The high halves of the ten addresses stand behind the description.
    if (length + 40 >= size) continue;
    EXPECT_TRUE(status.getDescription() == nullptr);
  }
  EXPECT_TRUE(isHeapUnused());
}

TEST(DescribedStatusBytes, ComeBackFromANewerWriter) {
  size_t const size = writeStatus();
  ASSERT_GT(size, size_t{300});
  // Three bytes more in the fixed part of the detail, behind the marker.
  constexpr size_t kDetail = nQELM100::kBinaryStreamHeaderSize + 12;
  constexpr size_t kEndOfFixedPart = kDetail + 4 + kDetailFixedLength;
  constexpr u32 kMore = 3;
  __builtin_memmove(bytes + kEndOfFixedPart + kMore, bytes + kEndOfFixedPart,
                    size - kEndOfFixedPart);
  bytes[kDetail] = kDetailFixedLength + kMore;
  i32 code = 0;
  tBinaryObjectReader reader(bytes, size + kMore, code);
  tStatus2 status;
  status.readExternal(reader, code);
  EXPECT_EQ(code, 0);
  EXPECT_TRUE(reader.isAtEnd());
  EXPECT_TRUE(status.getDescription() != nullptr);
}

TEST(DescribedStatusBytes, ComeBackFromAnOlderWriter) {
  size_t const size = writeStatus();
  ASSERT_GT(size, size_t{300});
  // Neither the marker nor the high halves.
  constexpr size_t kDetail = nQELM100::kBinaryStreamHeaderSize + 12;
  constexpr size_t kMarker = kDetail + 4 + kDetailFixedLength - 4;
  __builtin_memmove(bytes + kMarker, bytes + kMarker + 4, size - kMarker - 4);
  bytes[kDetail] = kDetailFixedLength - 4;
  i32 code = 0;
  tBinaryObjectReader reader(bytes, size - 4 - 40, code);
  tStatus2 status;
  status.readExternal(reader, code);
  EXPECT_EQ(code, 0);
  EXPECT_TRUE(reader.isAtEnd());
  EXPECT_TRUE(status.getDescription() != nullptr);
}
