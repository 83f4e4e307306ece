// Bytes that nobody wrote: each ends in an error, without an object and with nothing left behind.

#include "conformance/harness.h"
#include "qelmk/qelmk.h"
#include "support/goldenParcel.h"
#include "support/tParcel.h"
#include "support/tRegistration.h"

namespace {

using nQELM100::dynamicCast;
using nQELM100::kBinaryStreamHeaderSize;
using nQELM100::kMostObjectDepth;
using nQELM100::kStatusClassAbstract;
using nQELM100::kStatusClassMismatch;
using nQELM100::kStatusClassUnknown;
using nQELM100::kStatusStreamEnded;
using nQELM100::kStatusStreamMalformed;
using nQELM100::kStatusStreamTooDeep;
using nQELM100::tBinaryObjectReader;
using nQELM100::tBinaryObjectWriter;
using nQELM100::tObject;

// A stream that is put together by hand, and what reading an object of it came to.
class tHandmadeStream {
 public:
  tHandmadeStream() { put({'Q', 'E', 'L', 'M', 1, 0, 0, 0}); }

  template <u32 Size>
  tHandmadeStream& put(u8 const (&more)[Size]) {
    for (u8 const byte : more) bytes[size++] = byte;
    return *this;
  }
  tHandmadeStream& putCount(u32 count) {
    __builtin_memcpy(bytes + size, &count, sizeof(count));
    size += sizeof(count);
    return *this;
  }
  tHandmadeStream& putObject(char const* name, u32 contentLength) {
    auto const length = static_cast<u16>(__builtin_strlen(name));
    __builtin_memcpy(bytes + size, &length, sizeof(length));
    __builtin_memcpy(bytes + size + sizeof(length), name, length);
    size += sizeof(length) + length;
    return putCount(contentLength);
  }

  // Every object that is made meanwhile is destroyed, and the outcome must be an error.
  i32 readObject() {
    i32 const living = tParcel::living + tBrokenParcel::living;
    i32 status = 0;
    tBinaryObjectReader reader(bytes, size, status);
    EXPECT_TRUE(reader.readObject(status) == nullptr);
    EXPECT_EQ(living, tParcel::living + tBrokenParcel::living);
    position = reader.getPosition();
    failurePosition = reader.getFailurePosition();
    return status;
  }

  u8 bytes[1024] = {};
  size_t size = 0;
  size_t position = 0;  // after readObject
  size_t failurePosition = 0;
};

template <class tText>
i32 statusOfText(void (tBinaryObjectReader::*read)(tText&, i32&), u32 count, u32 size) {
  tHandmadeStream stream;
  stream.putCount(count);
  i32 status = 0;
  tBinaryObjectReader reader(stream.bytes, stream.size + size, status);
  tText text;
  if (!text.push_back('t')) return 1;
  (reader.*read)(text, status);
  if (status >= 0) return status;
  EXPECT_TRUE(text.size() == 1 && text[0] == 't');
  EXPECT_EQ(kBinaryStreamHeaderSize, reader.getPosition());
  EXPECT_EQ(kBinaryStreamHeaderSize, reader.getFailurePosition());
  return status;
}

i32 statusOfString(u32 count, u32 size) {
  return statusOfText<_STL::string>(&tBinaryObjectReader::readString, count, size);
}

i32 statusOfWideString(u32 count, u32 size) {
  return statusOfText<_STL::wstring>(&tBinaryObjectReader::readWideString, count, size);
}

}  // namespace

TEST(QelmkHostileBytes, EveryCutStreamEnds) {
  tRegistration<tParcel> const registration;
  i32 const living = tParcel::living;
  for (u32 size = kBinaryStreamHeaderSize; size < kGoldenParcelSize; ++size) {
    i32 status = 0;
    tBinaryObjectReader reader(kGoldenParcel, size, status);
    EXPECT_TRUE(reader.readObject(status) == nullptr);
    EXPECT_EQ(kStatusStreamEnded, status);
    EXPECT_EQ(kBinaryStreamHeaderSize, reader.getPosition());
    EXPECT_EQ(living, tParcel::living);
  }
}

TEST(QelmkHostileBytes, EveryCutNumberEndsAndKeepsItsValue) {
  u8 const bytes[] = {'Q', 'E', 'L', 'M', 1, 0, 0, 0, 1, 1, 1, 1, 1, 1, 1};
  for (u32 left = 0; left < 8; ++left) {
    i32 status = 0;
    tBinaryObjectReader reader(bytes, kBinaryStreamHeaderSize + left, status);
    u64 value = 42;
    reader.readU64(value, status);
    EXPECT_EQ(kStatusStreamEnded, status);
    EXPECT_EQ(u64{42}, value);
    EXPECT_EQ(kBinaryStreamHeaderSize, reader.getPosition());
  }
}

TEST(QelmkHostileBytes, ATextIsNoLongerThanWhatIsLeft) {
  EXPECT_EQ(i32{0}, statusOfString(5, 5));
  EXPECT_EQ(kStatusStreamEnded, statusOfString(6, 5));
  EXPECT_EQ(kStatusStreamEnded, statusOfString(0xFFFFFFFF, 5));
  EXPECT_EQ(i32{0}, statusOfWideString(5, 10));
  EXPECT_EQ(kStatusStreamEnded, statusOfWideString(5, 9));
  EXPECT_EQ(kStatusStreamEnded, statusOfWideString(6, 10));
  EXPECT_EQ(kStatusStreamEnded, statusOfWideString(0x80000000, 10));
  EXPECT_EQ(kStatusStreamEnded, statusOfWideString(0xFFFFFFFF, 10));
}

TEST(QelmkHostileBytes, ANameHasALargestLength) {
  EXPECT_EQ(kStatusStreamMalformed, tHandmadeStream().put({0x00, 0x02}).readObject());
  EXPECT_EQ(kStatusStreamMalformed, tHandmadeStream().put({0xFF, 0xFF}).readObject());
  EXPECT_EQ(kStatusStreamEnded, tHandmadeStream().put({0xFF, 0x01}).readObject());
}

TEST(QelmkHostileBytes, ANameIsNoLongerThanWhatIsLeft) {
  EXPECT_EQ(kStatusStreamEnded, tHandmadeStream().put({5, 0, 0, 0, 0, 0}).readObject());
}

TEST(QelmkHostileBytes, AnUnknownClassMakesNoObject) {
  tRegistration<tParcel> const registration;
  EXPECT_EQ(kStatusClassUnknown, tHandmadeStream().putObject("tParce", 0).readObject());
  EXPECT_EQ(kStatusClassUnknown, tHandmadeStream().putObject("tParcel1", 0).readObject());
}

TEST(QelmkHostileBytes, ANameWithNULIsUnknown) {
  tRegistration<tParcel> const registration;
  tHandmadeStream stream;
  stream.put({8, 0, 't', 'P', 'a', 'r', 'c', 'e', 'l', 0, 0, 0, 0, 0});
  EXPECT_EQ(kStatusClassUnknown, stream.readObject());
}

TEST(QelmkHostileBytes, AClassWithoutInstancesMakesNoObject) {
  tHandmadeStream stream;
  stream.putObject("nQELM100::iExternalizable", 0);
  EXPECT_EQ(kStatusClassAbstract, stream.readObject());
  EXPECT_EQ(kBinaryStreamHeaderSize, stream.failurePosition);
}

TEST(QelmkHostileBytes, AClassThatIsNotExternalizableMakesNoObject) {
  tRegistration<tStone> const registration;
  EXPECT_EQ(kStatusClassMismatch, tHandmadeStream().putObject("tStone", 0).readObject());
}

TEST(QelmkHostileBytes, AContentIsNoLongerThanWhatIsLeft) {
  tRegistration<tParcel> const registration;
  EXPECT_EQ(kStatusStreamEnded, tHandmadeStream().putObject("tParcel", 1).readObject());
  EXPECT_EQ(kStatusStreamEnded, tHandmadeStream().putObject("tParcel", 0xFFFFFFFF).readObject());
}

TEST(QelmkHostileBytes, NothingIsReadBeyondTheContentOfAnObject) {
  tRegistration<tParcel> const registration;
  for (u32 length = 0; length < 35; ++length) {
    tHandmadeStream stream;
    stream.putObject("tParcel", length).put({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13});
    stream.put({14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    EXPECT_EQ(kStatusStreamEnded, stream.readObject());
    EXPECT_EQ(kBinaryStreamHeaderSize + 13 + length, stream.position);
  }
}

TEST(QelmkHostileBytes, APackedObjectDoesNotReachBeyondItsParcel) {
  tRegistration<tParcel> const registration;
  u8 bytes[kGoldenParcelSize];
  __builtin_memcpy(bytes, kGoldenParcel, sizeof(bytes));
  constexpr u32 kInnerLength = kGoldenParcelSize - 35 - 4;
  ++bytes[kInnerLength];
  i32 status = 0;
  tBinaryObjectReader reader(bytes, sizeof(bytes), status);
  EXPECT_TRUE(reader.readObject(status) == nullptr);
  EXPECT_EQ(kStatusStreamEnded, status);
}

TEST(QelmkHostileBytes, ObjectsLieInOneAnotherUpToALimit) {
  tRegistration<tParcel> const registration;
  constexpr u32 kNumbers = 1 + 4 + 4 + 8 + 8 + 4 + 4;
  constexpr u32 kHead = 2 + 7 + 4;
  for (u32 count = kMostObjectDepth; count <= kMostObjectDepth + 1; ++count) {
    tHandmadeStream stream;
    for (u32 inside = count; inside-- != 0;) {
      stream.putObject("tParcel", kNumbers + inside * (kHead + kNumbers) + 2);
      stream.size += kNumbers;
    }
    stream.size += 2;
    i32 status = 0;
    tBinaryObjectReader reader(stream.bytes, stream.size, status);
    tObject* const object = reader.readObject(status);
    EXPECT_EQ(count > kMostObjectDepth ? kStatusStreamTooDeep : 0, status);
    EXPECT_EQ(count > kMostObjectDepth, object == nullptr);
    destroy(object);
  }
}

TEST(QelmkHostileBytes, AnObjectThatFailsByItselfIsDestroyed) {
  tRegistration<tBrokenParcel> const registration;
  tHandmadeStream stream;
  stream.putObject("tBrokenParcel", 1).put({'b'});
  EXPECT_EQ(tBrokenParcel::kStatusBroken, stream.readObject());
}

TEST(QelmkHostileBytes, AParcelWithABrokenOneInsideIsDestroyed) {
  tRegistration<tParcel> const registration;
  tRegistration<tBrokenParcel> const brokenRegistration;
  tParcel parcel;
  parcel.inside = new tBrokenParcel;
  ASSERT_NE(parcel.inside, nullptr);
  tHandmadeStream stream;
  tBinaryObjectWriter writer(stream.bytes, sizeof(stream.bytes));
  i32 status = 0;
  writer.writeObject(&parcel, status);
  ASSERT_EQ(i32{0}, status);
  stream.size = writer.getSize();
  EXPECT_EQ(tBrokenParcel::kStatusBroken, stream.readObject());
}

TEST(QelmkHostileBytes, AnObjectThatCannotBeMadeCanBePassedOver) {
  tHandmadeStream stream;
  stream.putObject("tNobody", 3).put({1, 2, 3}).put({'n'});
  i32 status = 0;
  tBinaryObjectReader reader(stream.bytes, stream.size, status);
  EXPECT_TRUE(reader.readObject(status) == nullptr);
  EXPECT_EQ(kStatusClassUnknown, status);
  status = 0;
  char next = '\0';
  reader.readCharacter(next, status);
  EXPECT_EQ(i32{0}, status);
  EXPECT_EQ('n', next);
}

TEST(QelmkHostileBytes, TellsWhereTheFirstFailureWas) {
  tRegistration<tParcel> const registration;
  tHandmadeStream stream;
  stream.putObject("tParcel", 1 + 4 + 3).put({'c', 1, 0, 0, 0, 2, 0, 0});
  EXPECT_EQ(kStatusStreamEnded, stream.readObject());
  EXPECT_EQ(kBinaryStreamHeaderSize + 13 + 1 + 4, stream.failurePosition);
}

TEST(QelmkHostileBytes, TellsWhereTheObjectIsThatCannotBeMade) {
  tHandmadeStream stream;
  stream.putObject("tNobody", 0);
  EXPECT_EQ(kStatusClassUnknown, stream.readObject());
  EXPECT_EQ(kBinaryStreamHeaderSize, stream.failurePosition);
}

TEST(QelmkHostileBytes, TellsHowFarAnObjectCameThatFailsByItself) {
  tRegistration<tBrokenParcel> const registration;
  tHandmadeStream stream;
  stream.putObject("tBrokenParcel", 1).put({'b'});
  stream.readObject();
  EXPECT_EQ(kBinaryStreamHeaderSize + 2 + 13 + 4 + 1, stream.failurePosition);
}
