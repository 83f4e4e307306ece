#include "conformance/harness.h"
#include "qelmk/qelmk.h"
#include "stl/borrowed_string.h"
#include "support/callerCodes.h"
#include "support/goldenParcel.h"
#include "support/tParcel.h"
#include "support/tRegistration.h"

namespace {

using nQELM100::kBinaryStreamHeaderSize;
using nQELM100::kMostObjectDepth;
using nQELM100::kStatusClassAbstract;
using nQELM100::kStatusClassMismatch;
using nQELM100::kStatusClassUnknown;
using nQELM100::kStatusStreamFull;
using nQELM100::kStatusStreamTooDeep;
using nQELM100::tBinaryObjectWriter;

constexpr u8 kFiller = 0xA5;

// A buffer that knows what was written into it.
struct tBuffer {
  u8 bytes[256];

  tBuffer() { __builtin_memset(bytes, kFiller, sizeof(bytes)); }

  template <u32 Size>
  bool holds(u8 const (&wanted)[Size]) const {
    return __builtin_memcmp(bytes + kBinaryStreamHeaderSize, wanted, Size) == 0 &&
           isUntouchedFrom(kBinaryStreamHeaderSize + Size);
  }
  bool isUntouchedFrom(size_t place) const {
    for (; place < sizeof(bytes); ++place) {
      if (bytes[place] != kFiller) return false;
    }
    return true;
  }
};

class tAnonymousParcel : public tParcel {
 public:
  nQELM100::tClass getClass(i32& /*status*/) const override { return nQELM100::tClass(); }
};

// Writes an object, which leaves the stream as it was when it fails.
i32 statusOf(nQELM100::tObject const& object) {
  tBinaryObjectWriter writer(nullptr, 0);
  i32 status = 0;
  writer.writeObject(&object, status);
  EXPECT_EQ(status < 0, writer.getSize() == kBinaryStreamHeaderSize);
  return status;
}

// Packs parcels into one another until there are `count`.
bool nest(tParcel& outermost, u32 count) {
  tParcel* innermost = &outermost;
  for (u32 depth = 1; depth < count && innermost != nullptr; ++depth) innermost = innermost->pack();
  return innermost != nullptr;
}

}  // namespace

TEST(QelmkBinaryWriter, BeginsWithMagicAndVersion) {
  tBuffer buffer;
  tBinaryObjectWriter const writer(buffer.bytes, sizeof(buffer.bytes));
  constexpr u8 kHeader[] = {'Q', 'E', 'L', 'M', 1, 0, 0, 0};
  EXPECT_EQ(kBinaryStreamHeaderSize, writer.getSize());
  EXPECT_TRUE(__builtin_memcmp(buffer.bytes, kHeader, sizeof(kHeader)) == 0);
  EXPECT_TRUE(buffer.isUntouchedFrom(kBinaryStreamHeaderSize));
}

TEST(QelmkBinaryWriter, WritesNumbersWithTheLowestByteFirst) {
  tBuffer buffer;
  tBinaryObjectWriter writer(buffer.bytes, sizeof(buffer.bytes));
  i32 status = 0;
  writer.writeCharacter('\x80', status);
  writer.writeI32(-2147483647 - 1, status);
  writer.writeU32(0x01020304, status);
  writer.writeI64(-2, status);
  writer.writeU64(0x0102030405060708, status);
  constexpr u8 kWanted[] = {0x80, 0,    0,    0,    0x80, 4, 3, 2, 1, 0xFE, 0xFF, 0xFF, 0xFF,
                            0xFF, 0xFF, 0xFF, 0xFF, 8,    7, 6, 5, 4, 3,    2,    1};
  EXPECT_EQ(i32{0}, status);
  EXPECT_TRUE(buffer.holds(kWanted));
}

TEST(QelmkBinaryWriter, WritesTextsWithTheirCountOfCharacters) {
  tBuffer buffer;
  tBinaryObjectWriter writer(buffer.bytes, sizeof(buffer.bytes));
  i32 status = 0;
  writer.writeString(_STL::string("ab"), status);
  writer.writeString(_STL::string(), status);
  writer.writeWideString(_STL::wstring(L"\x0101"), status);
  writer.writeWideString(_STL::wstring(), status);
  constexpr u8 kWanted[] = {2, 0, 0, 0, 'a', 'b', 0, 0, 0, 0, 1, 0, 0, 0, 1, 1, 0, 0, 0, 0};
  EXPECT_EQ(i32{0}, status);
  EXPECT_TRUE(buffer.holds(kWanted));
}

// Texts that are not there: a writer does not look at what it has no room for.
TEST(QelmkBinaryWriter, RefusesATextThatHasMoreCharactersThanItsCountCanSay) {
  constexpr size_t kMost = 0xFFFFFFFF;
  _STL::borrowed_string<char> const longest("a", kMost);
  _STL::borrowed_string<char> const tooLong("a", kMost + 1);
  tBuffer buffer;
  tBinaryObjectWriter writer(buffer.bytes, sizeof(buffer.bytes));
  i32 status = 0;
  writer.writeString(tooLong.get(), status);
  EXPECT_EQ(nQELM100::kStatusStreamTooLong, status);
  EXPECT_EQ(kBinaryStreamHeaderSize, writer.getSize());
  status = 0;
  writer.writeString(longest.get(), status);
  EXPECT_EQ(i32{0}, status);
  EXPECT_EQ(kBinaryStreamHeaderSize + sizeof(u32) + kMost, writer.getSize());
}

TEST(QelmkBinaryWriter, WritesNoObjectAsTwoZeros) {
  tBuffer buffer;
  tBinaryObjectWriter writer(buffer.bytes, sizeof(buffer.bytes));
  i32 status = 0;
  writer.writeObject(nullptr, status);
  constexpr u8 kWanted[] = {0, 0};
  EXPECT_EQ(i32{0}, status);
  EXPECT_TRUE(buffer.holds(kWanted));
}

TEST(QelmkBinaryWriter, WritesAnObjectWithNameLengthAndContent) {
  tRegistration<tParcel> const registration;
  tParcel parcel;
  ASSERT_TRUE(fillGoldenParcel(parcel));
  tBuffer buffer;
  tBinaryObjectWriter writer(buffer.bytes, sizeof(buffer.bytes));
  i32 status = 0;
  writer.writeObject(&parcel, status);
  writer.finish(status);
  EXPECT_EQ(i32{0}, status);
  EXPECT_EQ(size_t{kGoldenParcelSize}, writer.getSize());
  EXPECT_TRUE(__builtin_memcmp(buffer.bytes, kGoldenParcel, kGoldenParcelSize) == 0);
}

TEST(QelmkBinaryWriter, AWarningStays) {
  tBinaryObjectWriter writer(nullptr, 0);
  i32 status = 7;
  writer.writeU32(0, status);
  writer.writeString(_STL::string("a"), status);
  writer.writeObject(nullptr, status);
  writer.finish(status);
  EXPECT_EQ(i32{7}, status);
}

TEST(QelmkBinaryWriter, WritesNothingAfterAnError) {
  tRegistration<tParcel> const registration;
  tParcel const parcel;
  tBinaryObjectWriter writer(nullptr, 0);
  i32 status = kEarlierError;
  writer.writeCharacter('c', status);
  writer.writeI32(1, status);
  writer.writeU32(1, status);
  writer.writeI64(1, status);
  writer.writeU64(1, status);
  writer.writeString(_STL::string("a"), status);
  writer.writeWideString(_STL::wstring(L"a"), status);
  writer.writeObject(&parcel, status);
  writer.writeObject(nullptr, status);
  tStone const refused;
  writer.writeObject(&refused, status);
  writer.finish(status);
  EXPECT_EQ(kEarlierError, status);
  EXPECT_EQ(kBinaryStreamHeaderSize, writer.getSize());
}

TEST(QelmkBinaryWriter, WithoutABufferItOnlyCounts) {
  tRegistration<tParcel> const registration;
  tParcel parcel;
  ASSERT_TRUE(fillGoldenParcel(parcel));
  tBinaryObjectWriter writer(nullptr, 1000);
  i32 status = 0;
  writer.writeObject(&parcel, status);
  writer.finish(status);
  EXPECT_EQ(i32{0}, status);
  EXPECT_EQ(size_t{kGoldenParcelSize}, writer.getSize());
}

TEST(QelmkBinaryWriter, ABufferOfTheSizeIsNotFull) {
  tBuffer buffer;
  tBinaryObjectWriter writer(buffer.bytes, kBinaryStreamHeaderSize + 4);
  i32 status = 0;
  writer.writeU32(0x01020304, status);
  writer.finish(status);
  constexpr u8 kWanted[] = {4, 3, 2, 1};
  EXPECT_EQ(i32{0}, status);
  EXPECT_TRUE(buffer.holds(kWanted));
}

TEST(QelmkBinaryWriter, AnItemMayFillTheBuffer) {
  tBuffer buffer;
  tBinaryObjectWriter const writer(buffer.bytes, sizeof(nQELM100::kBinaryStreamMagic));
  EXPECT_EQ(0, __builtin_memcmp(buffer.bytes, nQELM100::kBinaryStreamMagic,
                                sizeof(nQELM100::kBinaryStreamMagic)));
  EXPECT_TRUE(buffer.isUntouchedFrom(sizeof(nQELM100::kBinaryStreamMagic)));
}

TEST(QelmkBinaryWriter, ABufferThatIsTooSmallIsNeverWrittenBeyond) {
  tRegistration<tParcel> const registration;
  tParcel parcel;
  ASSERT_TRUE(fillGoldenParcel(parcel));
  for (u32 capacity = 0; capacity < kGoldenParcelSize; ++capacity) {
    tBuffer buffer;
    tBinaryObjectWriter writer(buffer.bytes, capacity);
    i32 status = 0;
    writer.writeObject(&parcel, status);
    EXPECT_EQ(i32{0}, status);
    writer.finish(status);
    EXPECT_EQ(kStatusStreamFull, status);
    EXPECT_EQ(size_t{kGoldenParcelSize}, writer.getSize());
    EXPECT_TRUE(buffer.isUntouchedFrom(capacity));
  }
}

TEST(QelmkBinaryWriter, AnItemThatDoesNotFitIsLeftOutWhole) {
  tBuffer buffer;
  tBinaryObjectWriter writer(buffer.bytes, kBinaryStreamHeaderSize + 3);
  i32 status = 0;
  writer.writeU32(1, status);
  writer.writeCharacter('c', status);
  EXPECT_TRUE(buffer.isUntouchedFrom(kBinaryStreamHeaderSize));
  EXPECT_EQ(kBinaryStreamHeaderSize + 5, writer.getSize());
}

TEST(QelmkBinaryWriter, CharactersAtOnceAreItemsOfTheirOwn) {
  for (size_t capacity = kBinaryStreamHeaderSize - 1; capacity < kBinaryStreamHeaderSize + 7;
       ++capacity) {
    tBuffer once;
    tBuffer each;
    tBinaryObjectWriter atOnce(once.bytes, capacity);
    tBinaryObjectWriter oneByOne(each.bytes, capacity);
    i32 status = 0;
    atOnce.writeCharacters("a\0cde", 5, status);
    char const characters[] = {'a', '\0', 'c', 'd', 'e'};
    for (char const character : characters) oneByOne.writeCharacter(character, status);
    EXPECT_EQ(0, status);
    EXPECT_EQ(oneByOne.getSize(), atOnce.getSize());
    EXPECT_EQ(0, __builtin_memcmp(each.bytes, once.bytes, sizeof(once.bytes)));
    status = kEarlierError;
    atOnce.writeCharacters("x", 1, status);
    EXPECT_EQ(oneByOne.getSize(), atOnce.getSize());
  }
}

TEST(QelmkBinaryWriter, AFullBufferKeepsAnEarlierError) {
  tBuffer buffer;
  tBinaryObjectWriter const writer(buffer.bytes, 0);
  i32 status = kEarlierError;
  writer.finish(status);
  EXPECT_EQ(kEarlierError, status);
}

TEST(QelmkBinaryWriter, RefusesAClassThatNoReaderWouldFind) {
  tParcel const parcel;
  EXPECT_EQ(kStatusClassUnknown, statusOf(parcel));
}

TEST(QelmkBinaryWriter, RefusesAnObjectThatNamesNoClass) {
  tAnonymousParcel const anonymous;
  EXPECT_EQ(kStatusClassUnknown, statusOf(anonymous));
}

TEST(QelmkBinaryWriter, RefusesAClassWhoseNameMeansAnother) {
  nQELM100::tClassImplementation other("tParcel", nullptr, nullptr);
  i32 status = 0;
  nQELM100::registerClass(other, status);
  tParcel const parcel;
  EXPECT_EQ(kStatusClassUnknown, statusOf(parcel));
  nQELM100::unregisterClass(other);
}

TEST(QelmkBinaryWriter, RefusesAClassWithoutInstances) {
  tMaskedParcel const masked;
  EXPECT_EQ(kStatusClassAbstract, statusOf(masked));
}

TEST(QelmkBinaryWriter, RefusesAnObjectThatIsNotExternalizable) {
  tRegistration<tStone> const registration;
  tStone const stone;
  EXPECT_EQ(kStatusClassMismatch, statusOf(stone));
}

TEST(QelmkBinaryWriter, ARefusedObjectInsideRefusesTheWhole) {
  tRegistration<tParcel> const registration;
  tParcel parcel;
  parcel.inside = new tStone;
  EXPECT_EQ(kStatusClassMismatch, statusOf(parcel));
}

TEST(QelmkBinaryWriter, ObjectsLieInOneAnotherUpToALimit) {
  tRegistration<tParcel> const registration;
  tParcel deepest;
  ASSERT_TRUE(nest(deepest, kMostObjectDepth));
  EXPECT_EQ(i32{0}, statusOf(deepest));
  tParcel tooDeep;
  ASSERT_TRUE(nest(tooDeep, kMostObjectDepth + 1));
  EXPECT_EQ(kStatusStreamTooDeep, statusOf(tooDeep));
}

TEST(QelmkBinaryWriter, ObjectsSideBySideHaveNoLimit) {
  tRegistration<tParcel> const registration;
  tParcel const parcel;
  tBinaryObjectWriter writer(nullptr, 0);
  i32 status = 0;
  for (u32 count = 0; count < 2 * kMostObjectDepth; ++count) writer.writeObject(&parcel, status);
  EXPECT_EQ(i32{0}, status);
}

TEST(QelmkBinaryWriter, AnObjectThatFailsLeavesTheStreamAsItWas) {
  tRegistration<tBrokenParcel> const registration;
  tBrokenParcel const broken;
  tBuffer buffer;
  tBinaryObjectWriter writer(buffer.bytes, sizeof(buffer.bytes));
  i32 status = 0;
  tBrokenParcel::isWritingBroken = true;
  writer.writeObject(&broken, status);
  tBrokenParcel::isWritingBroken = false;
  EXPECT_EQ(tBrokenParcel::kStatusBroken, status);
  EXPECT_EQ(kBinaryStreamHeaderSize, writer.getSize());
  status = 0;
  writer.writeU32(1, status);
  EXPECT_EQ(kBinaryStreamHeaderSize + 4, writer.getSize());
  EXPECT_EQ(u8{1}, buffer.bytes[kBinaryStreamHeaderSize]);
}
