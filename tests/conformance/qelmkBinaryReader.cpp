#include "conformance/harness.h"
#include "qelmk/qelmk.h"
#include "support/callerCodes.h"
#include "support/goldenParcel.h"
#include "support/tParcel.h"
#include "support/tRegistration.h"

// Classes whose names are alike: the one begins the other two, which differ by one in the last
// character.
class tCrate : public virtual nQELM100::iExternalizable {
  QELM_DECLARE_CLASS(tCrate, nQELM100::iExternalizable)

 public:
  void writeExternal(nQELM100::iObjectWriter&, i32&) const override {}
  void readExternal(nQELM100::iObjectReader&, i32&) override {}
};

class tCrate1 : public tCrate {
  QELM_DECLARE_CLASS(tCrate1, tCrate)
};

class tCrate2 : public tCrate {
  QELM_DECLARE_CLASS(tCrate2, tCrate)
};

QELM_DEFINE_CLASS(tCrate, "tCrate")
QELM_DEFINE_CLASS(tCrate1, "tCrate1")
QELM_DEFINE_CLASS(tCrate2, "tCrate2")

namespace {

using nQELM100::dynamicCast;
using nQELM100::kBinaryStreamHeaderSize;
using nQELM100::kStatusStreamBadHeader;
using nQELM100::kStatusStreamEnded;
using nQELM100::kStatusStreamNewer;
using nQELM100::tBinaryObjectReader;
using nQELM100::tObject;

// The status of reading the first `size` bytes of the header.
i32 statusOfHeader(u8 const (&header)[kBinaryStreamHeaderSize],
                   size_t size = kBinaryStreamHeaderSize) {
  i32 status = 0;
  tBinaryObjectReader const reader(header, size, status);
  EXPECT_TRUE(reader.isAtEnd());
  EXPECT_EQ(size_t{0}, reader.getPosition());
  EXPECT_EQ(size_t{0}, reader.getFailurePosition());
  return status;
}

}  // namespace

TEST(QelmkBinaryReader, TakesAStreamWithoutItems) {
  constexpr u8 kBytes[] = {'Q', 'E', 'L', 'M', 1, 0, 0, 0};
  i32 status = kEarlierWarning;
  tBinaryObjectReader const reader(kBytes, sizeof(kBytes), status);
  EXPECT_EQ(kEarlierWarning, status);
  EXPECT_TRUE(reader.isAtEnd());
  EXPECT_EQ(kBinaryStreamHeaderSize, reader.getPosition());
  EXPECT_EQ(u64{0}, reader.getMostItems());
}

TEST(QelmkBinaryReader, RefusesBytesThatAreNoStream) {
  EXPECT_EQ(kStatusStreamBadHeader, statusOfHeader({'q', 'E', 'L', 'M', 1, 0, 0, 0}));
  EXPECT_EQ(kStatusStreamBadHeader, statusOfHeader({'Q', 'E', 'L', 'N', 1, 0, 0, 0}));
  EXPECT_EQ(kStatusStreamBadHeader, statusOfHeader({'Q', 'E', 'L', 'N', 1, 0, 0, 0}, 4));
}

TEST(QelmkBinaryReader, RefusesAVersionThatNeverWas) {
  EXPECT_EQ(kStatusStreamBadHeader, statusOfHeader({'Q', 'E', 'L', 'M', 0, 0, 0, 0}));
}

TEST(QelmkBinaryReader, RefusesALaterVersion) {
  EXPECT_EQ(kStatusStreamNewer, statusOfHeader({'Q', 'E', 'L', 'M', 2, 0, 0, 0}));
  EXPECT_EQ(kStatusStreamNewer, statusOfHeader({'Q', 'E', 'L', 'M', 1, 0, 0, 0x80}));
}

TEST(QelmkBinaryReader, RefusesACutHeader) {
  for (size_t size = 0; size < kBinaryStreamHeaderSize; ++size) {
    EXPECT_EQ(kStatusStreamEnded, statusOfHeader({'Q', 'E', 'L', 'M', 1, 0, 0, 0}, size));
  }
}

TEST(QelmkBinaryReader, NoBytesAreAnEmptyStream) {
  i32 status = 0;
  tBinaryObjectReader const reader(nullptr, 1000, status);
  EXPECT_EQ(kStatusStreamEnded, status);
  EXPECT_TRUE(reader.isAtEnd());
}

TEST(QelmkBinaryReader, NothingIsReadAfterABadHeader) {
  constexpr u8 kBytes[] = {'Q', 'E', 'L', 'M', 2, 0, 0, 0, 'x', 'y'};
  i32 status = 0;
  tBinaryObjectReader reader(kBytes, sizeof(kBytes), status);
  status = 0;
  char character = 'c';
  reader.readCharacter(character, status);
  EXPECT_EQ(kStatusStreamEnded, status);
  EXPECT_EQ('c', character);
}

TEST(QelmkBinaryReader, KeepsAnEarlierErrorAndReadsNothing) {
  i32 status = kEarlierError;
  tBinaryObjectReader const reader(kGoldenParcel, kGoldenParcelSize, status);
  EXPECT_EQ(kEarlierError, status);
  EXPECT_TRUE(reader.isAtEnd());
}

TEST(QelmkBinaryReader, ReadsTheGoldenBytes) {
  tRegistration<tParcel> const registration;
  tParcel wanted;
  ASSERT_TRUE(fillGoldenParcel(wanted));
  i32 status = 0;
  tBinaryObjectReader reader(kGoldenParcel, kGoldenParcelSize, status);
  tObject* const object = reader.readObject(status);
  EXPECT_EQ(i32{0}, status);
  EXPECT_TRUE(reader.isAtEnd());
  auto const* const parcel = dynamicCast<tParcel>(object);
  EXPECT_TRUE(parcel != nullptr && parcel->isLike(wanted));
  EXPECT_EQ(size_t{0}, reader.getFailurePosition());
  destroy(object);
}

TEST(QelmkBinaryReader, ReadsTextsOfOneCharacter) {
  constexpr u8 kBytes[] = {'Q', 'E', 'L', 'M', 1, 0, 0, 0, 1, 0, 0, 0, 'x', 1, 0, 0, 0, 'y', 'z'};
  i32 status = 0;
  tBinaryObjectReader reader(kBytes, sizeof(kBytes), status);
  _STL::string text;
  _STL::wstring wideText;
  reader.readString(text, status);
  reader.readWideString(wideText, status);
  EXPECT_EQ(0, status);
  EXPECT_TRUE(text.size() == 1 && text[0] == 'x');
  EXPECT_TRUE(wideText.size() == 1 && wideText[0] == 'z' * 256 + 'y');
}

TEST(QelmkBinaryReader, ReadsNumbersOfEveryKind) {
  u8 bytes[64];
  nQELM100::tBinaryObjectWriter writer(bytes, sizeof(bytes));
  i32 status = 0;
  writer.writeI32(-2147483647 - 1, status);
  writer.writeU32(0xFFFFFFFF, status);
  writer.writeI64(-1 - i64{0x7FFFFFFFFFFFFFFF}, status);
  writer.writeU64(~u64{0}, status);
  tBinaryObjectReader reader(bytes, writer.getSize(), status);
  i32 number = 0;
  u32 unsignedNumber = 0;
  i64 wideNumber = 0;
  u64 wideUnsignedNumber = 0;
  reader.readI32(number, status);
  reader.readU32(unsignedNumber, status);
  reader.readI64(wideNumber, status);
  reader.readU64(wideUnsignedNumber, status);
  EXPECT_EQ(i32{0}, status);
  EXPECT_EQ(-2147483647 - 1, number);
  EXPECT_EQ(u32{0xFFFFFFFF}, unsignedNumber);
  EXPECT_EQ(-1 - i64{0x7FFFFFFFFFFFFFFF}, wideNumber);
  EXPECT_EQ(~u64{0}, wideUnsignedNumber);
}

TEST(QelmkBinaryReader, AWarningStays) {
  tRegistration<tParcel> const registration;
  i32 status = kEarlierWarning;
  tBinaryObjectReader reader(kGoldenParcel, kGoldenParcelSize, status);
  destroy(reader.readObject(status));
  EXPECT_EQ(kEarlierWarning, status);
}

TEST(QelmkBinaryReader, ReadsNothingAfterAnError) {
  tRegistration<tParcel> const registration;
  i32 status = 0;
  tBinaryObjectReader reader(kGoldenParcel, kGoldenParcelSize, status);
  tParcel parcel;
  status = kEarlierError;
  char character = 'c';
  parcel.readExternal(reader, status);
  reader.readCharacters(&character, 1, status);
  EXPECT_EQ('c', character);
  EXPECT_TRUE(reader.readObject(status) == nullptr);
  EXPECT_EQ(kEarlierError, status);
  EXPECT_EQ(kBinaryStreamHeaderSize, reader.getPosition());
  EXPECT_TRUE(parcel.isLike(tParcel()));
}

TEST(QelmkBinaryReader, TellsHowManyItemsCanFollow) {
  constexpr u8 kBytes[] = {'Q', 'E', 'L', 'M', 1, 0, 0, 0, 1, 2, 3};
  i32 status = 0;
  tBinaryObjectReader reader(kBytes, sizeof(kBytes), status);
  EXPECT_EQ(u64{3}, reader.getMostItems());
  char character = '\0';
  reader.readCharacter(character, status);
  EXPECT_EQ(u64{2}, reader.getMostItems());
  EXPECT_FALSE(reader.isAtEnd());
}

TEST(QelmkBinaryReader, WhatALaterWriterAddedIsPassedOver) {
  tRegistration<tParcel> const registration;
  tRegistration<tLaterParcel> const laterRegistration;
  tLaterParcel later;
  tLaterParcel* const packed = new tLaterParcel;
  later.inside = packed;
  u8 bytes[256];
  nQELM100::tBinaryObjectWriter writer(bytes, sizeof(bytes));
  i32 status = 0;
  writer.writeObject(&later, status);
  writer.writeU32(42, status);
  tBinaryObjectReader reader(bytes, writer.getSize(), status);
  tObject* const object = reader.readObject(status);
  u32 next = 0;
  reader.readU32(next, status);
  EXPECT_EQ(i32{0}, status);
  EXPECT_EQ(u32{42}, next);
  auto const* const read = dynamicCast<tLaterParcel>(object);
  EXPECT_TRUE(read != nullptr && read->isLike(later));
  destroy(object);
}

TEST(QelmkBinaryReader, ObjectsOfClassesWithNamesThatAreAlikeFollowEachOther) {
  tRegistration<tCrate> const registration;
  tRegistration<tCrate1> const firstRegistration;
  tRegistration<tCrate2> const secondRegistration;
  tCrate const plain;
  tCrate1 const first;
  tCrate2 const second;
  tObject const* const written[] = {&plain, &second, &first, &plain, &first, &second};
  u8 bytes[128];
  nQELM100::tBinaryObjectWriter writer(bytes, sizeof(bytes));
  i32 status = 0;
  for (tObject const* const each : written) writer.writeObject(each, status);
  writer.finish(status);
  tBinaryObjectReader reader(bytes, writer.getSize(), status);
  for (tObject const* const each : written) {
    tObject* const object = reader.readObject(status);
    ASSERT_EQ(0, status);
    EXPECT_STREQ(each->getClass(status).getName(), object->getClass(status).getName());
    destroy(object);
  }
  EXPECT_TRUE(reader.isAtEnd());
}

TEST(QelmkBinaryReader, StreamsFollowEachOther) {
  constexpr u8 kBytes[] = {'Q', 'E', 'L', 'M', 1, 0, 0, 0, 'x',
                           'Q', 'E', 'L', 'M', 1, 0, 0, 0, 'y'};
  i32 status = 0;
  char character = '\0';
  tBinaryObjectReader first(kBytes, sizeof(kBytes), status);
  first.readCharacter(character, status);
  size_t const used = first.getPosition();
  tBinaryObjectReader second(kBytes + used, sizeof(kBytes) - used, status);
  second.readCharacter(character, status);
  EXPECT_EQ(i32{0}, status);
  EXPECT_EQ('y', character);
  EXPECT_TRUE(second.isAtEnd());
}

TEST(QelmkBinaryReader, CharactersAtOnceAreReadAsFarAsTheyGo) {
  constexpr u8 kBytes[] = {'Q', 'E', 'L', 'M', 1, 0, 0, 0, 'a', 'b', 'c'};
  i32 status = 0;
  tBinaryObjectReader reader(kBytes, sizeof(kBytes), status);
  char values[] = "......";
  reader.readCharacters(values, 2, status);
  EXPECT_EQ(0, status);
  EXPECT_STREQ("ab....", values);
  reader.readCharacters(values + 2, 3, status);
  EXPECT_EQ(kStatusStreamEnded, status);
  EXPECT_STREQ("abc...", values);
  EXPECT_EQ(sizeof(kBytes), reader.getFailurePosition());
  reader.readCharacters(values, 1, status);
  EXPECT_STREQ("abc...", values);
}

TEST(QelmkBinaryReader, TheFirstFailureStaysTheOneThatIsTold) {
  constexpr u8 kBytes[] = {'Q', 'E', 'L', 'M', 1, 0, 0, 0, 'a', 'b', 'c', 'd', 'e'};
  i32 status = 0;
  tBinaryObjectReader reader(kBytes, sizeof(kBytes), status);
  u64 number = 0;
  u32 shorter = 0;
  char character = '\0';
  reader.readCharacter(character, status);
  reader.readU64(number, status);
  EXPECT_EQ(kStatusStreamEnded, status);
  EXPECT_EQ(kBinaryStreamHeaderSize + 1, reader.getFailurePosition());
  status = 0;
  reader.readU32(shorter, status);
  EXPECT_EQ(0, status);
  reader.readU32(shorter, status);
  EXPECT_EQ(kStatusStreamEnded, status);
  EXPECT_EQ(kBinaryStreamHeaderSize + 1, reader.getFailurePosition());
}

TEST(QelmkBinaryReader, AClassIsLookedUpAgainWhenItHasGone) {
  u8 bytes[256];
  i32 status = 0;
  size_t size = 0;
  {
    tRegistration<tParcel> const registration;
    tParcel const parcel;
    nQELM100::tBinaryObjectWriter writer(bytes, sizeof(bytes));
    for (u32 count = 0; count < 3; ++count) writer.writeObject(&parcel, status);
    size = writer.getSize();
  }
  ASSERT_EQ(0, status);
  tBinaryObjectReader reader(bytes, size, status);
  {
    tRegistration<tParcel> const registration;
    nQELM100::destroyThroughClass(reader.readObject(status));
    EXPECT_EQ(0, status);
  }
  EXPECT_TRUE(reader.readObject(status) == nullptr);
  EXPECT_EQ(nQELM100::kStatusClassUnknown, status);
  status = 0;
  tRegistration<tParcel> const registration;
  tObject* const last = reader.readObject(status);
  EXPECT_TRUE(dynamicCast<tParcel>(last) != nullptr);
  nQELM100::destroyThroughClass(last);
  EXPECT_TRUE(reader.isAtEnd());
}

TEST(QelmkBinaryReader, IsNotBehindAnObjectWhoseHeadIsCut) {
  tRegistration<tParcel> const registration;
  u8 bytes[256];
  i32 status = 0;
  tParcel const parcel;
  nQELM100::tBinaryObjectWriter writer(bytes, sizeof(bytes));
  writer.writeObject(&parcel, status);
  writer.writeCharacter('\1', status);
  tBinaryObjectReader reader(bytes, writer.getSize(), status);
  nQELM100::destroyThroughClass(reader.readObject(status));
  ASSERT_EQ(0, status);
  EXPECT_TRUE(reader.readObject(status) == nullptr);
  EXPECT_EQ(kStatusStreamEnded, status);
  EXPECT_FALSE(reader.isPastFailedObject());
}
