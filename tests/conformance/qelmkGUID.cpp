#include "conformance/harness.h"
#include "qelmk/qelmk.h"
#include "support/callerCodes.h"

namespace {

using nQELM100::kBinaryStreamHeaderSize;
using nQELM100::kStatusStreamEnded;
using nQELM100::tBinaryObjectReader;
using nQELM100::tBinaryObjectWriter;
using nQELM100::tGUID;

constexpr tGUID kGUID(0x7A0C5A9E, 0x31B4, 0x4D0F, {0x9B, 0x1C, 2, 0x77, 0xC1, 0, 8, 0x2E});
constexpr u8 kStream[] = {'Q',  'E',  'L',  'M',  1,    0,    0,    0,    0x9E, 0x5A, 0x0C, 0x7A,
                          0xB4, 0x31, 0x0F, 0x4D, 0x9B, 0x1C, 0x02, 0x77, 0xC1, 0x00, 0x08, 0x2E};

}  // namespace

TEST(QelmkGUID, IsAllZeroUnlessSaidOtherwise) {
  constexpr tGUID kZero(0, 0, 0, {0, 0, 0, 0, 0, 0, 0, 0});
  EXPECT_TRUE(tGUID() == kZero);
  EXPECT_FALSE(kGUID == kZero);
}

TEST(QelmkGUID, EachPartCounts) {
  for (u32 index = 0; index < sizeof(tGUID); ++index) {
    tGUID other = kGUID;
    reinterpret_cast<u8*>(&other)[index] ^= 1;
    EXPECT_TRUE(other != kGUID);
  }
}

TEST(QelmkGUID, IsWrittenAsFourWordsInItsLayout) {
  u8 bytes[sizeof(kStream)] = {};
  tBinaryObjectWriter writer(bytes, sizeof(bytes));
  i32 status = 0;
  kGUID.writeExternal(writer, status);
  writer.finish(status);
  EXPECT_EQ(i32{0}, status);
  EXPECT_EQ(sizeof(kStream), writer.getSize());
  EXPECT_TRUE(__builtin_memcmp(bytes, kStream, sizeof(kStream)) == 0);
}

TEST(QelmkGUID, IsReadBack) {
  i32 status = 0;
  tBinaryObjectReader reader(kStream, sizeof(kStream), status);
  tGUID read;
  read.readExternal(reader, status);
  EXPECT_EQ(i32{0}, status);
  EXPECT_TRUE(read == kGUID);
}

TEST(QelmkGUID, KeepsItsValueWhenTheStreamIsCut) {
  for (size_t size = kBinaryStreamHeaderSize; size < sizeof(kStream); ++size) {
    i32 status = 0;
    tBinaryObjectReader reader(kStream, size, status);
    tGUID read;
    read.readExternal(reader, status);
    EXPECT_EQ(kStatusStreamEnded, status);
    EXPECT_TRUE(read == tGUID());
  }
}

TEST(QelmkGUID, DoesNothingAfterAnError) {
  tBinaryObjectWriter writer(nullptr, 0);
  i32 status = kEarlierError;
  kGUID.writeExternal(writer, status);
  EXPECT_EQ(kBinaryStreamHeaderSize, writer.getSize());
  i32 readerStatus = 0;
  tBinaryObjectReader reader(kStream, sizeof(kStream), readerStatus);
  tGUID read;
  read.readExternal(reader, status);
  EXPECT_EQ(kEarlierError, status);
  EXPECT_TRUE(read == tGUID());
}
