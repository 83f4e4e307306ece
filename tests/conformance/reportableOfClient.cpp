// The templates with a type that the library does not know.

#include "conformance/harness.h"
#include "qelmk/qelmk.h"
#include "support/reportableSamples.h"
#include "support/tItemStream.h"
#include "support/tTestConverter.h"
#include "support/tTestTranslator.h"

namespace clientTests {

// A slot of a rack, by row and column.
struct tPlace {
  u16 row = 0;
  u16 column = 0;

  bool operator==(tPlace const& other) const = default;
};

}  // namespace clientTests

template <>
struct nOXDIAG100::tReportableValue<clientTests::tPlace> {
  static constexpr char kIntrinsicName[] = "clientTests::tPlaces";
  static constexpr char kRangeName[] = "clientTests::tPlaceRange";

  static void write(nQELM100::iObjectWriter& writer, clientTests::tPlace value, i32& status) {
    writer.writeU32(u32{value.row} << 16 | value.column, status);
  }
  static void read(nQELM100::iObjectReader& reader, clientTests::tPlace& value, i32& status) {
    u32 both = 0;
    reader.readU32(both, status);
    if (status < 0) return;
    value = {static_cast<u16>(both >> 16), static_cast<u16>(both)};
  }
  static _STL::wstring translate(tReportText& report, clientTests::tPlace value) {
    _STL::wstring text(L"row ");
    text.append(report.getTranslator().translateU32(value.row, report.getStatus()));
    return text;
  }
};

template class nOXDIAG100::tIntrinsicTypeReportable<clientTests::tPlace>;

namespace {

using clientTests::tPlace;
using nOXDIAG100::tStatus2;
using tPlaces = nOXDIAG100::tIntrinsicTypeReportable<tPlace>;
using tPlaceRange = nOXDIAG100::tBoundedRangeReportable<tPlace>;

constexpr tPlace kFirst = {1, 2};
constexpr tPlace kSecond = {3, 4};

}  // namespace

TEST(ReportableOfClient, IsRendered) {
  tTestTranslator const translator;
  tStatus2 status;
  EXPECT_STREQ(tReport(tPlaces(listOf(kFirst, kSecond), status), translator).getText(),
               "<[>row u32 1, row u32 3");
  EXPECT_STREQ(tReport(tPlaceRange(kFirst, kSecond, status), translator).getText(),
               "<[>row u32 1..row u32 3");
}

TEST(ReportableOfClient, IsWrittenAndReadBack) {
  tStatus2 status;
  tItemStream& stream = cleanStream();
  i32 code = 0;
  tPlaceRange const range(kFirst, kSecond, status);
  range.writeExternal(stream, code);
  EXPECT_EQ(stream.getItem(0).value, u32{0x10002});
  tPlaceRange copy;
  copy.readExternal(stream, code);
  EXPECT_EQ(code, 0);
  EXPECT_EQ(copy.isEquivalent(range, status), u32{1});
}

TEST(ReportableOfClient, IsAClassThatCanBeFound) {
  tRegistration<tPlaces> const registration;
  ASSERT_EQ(registration.getStatus(), 0);
  i32 code = 0;
  auto const placesClass = nQELM100::tClass::forName("clientTests::tPlaces", code);
  EXPECT_TRUE(placesClass == tPlaces::staticGetClass(code));
  EXPECT_TRUE(placesClass != tPlaceRange::staticGetClass(code));
}

TEST(ReportableOfClient, GoesThroughABinaryStreamWhileItIsRegistered) {
  tStatus2 status;
  tPlaces const places(listOf(kFirst, kSecond), status);
  u8 bytes[64];
  constexpr bool kBoth[] = {false, true};
  for (bool isRegistered : kBoth) {
    nQELM100::tBinaryObjectWriter writer(bytes, sizeof(bytes));
    i32 code = 0;
    if (isRegistered) tPlaces::___registerClass(code);
    writer.writeObject(&places, code);
    EXPECT_EQ(code, isRegistered ? 0 : nQELM100::kStatusClassUnknown);
  }
  i32 code = 0;
  nQELM100::tBinaryObjectReader reader(bytes, sizeof(bytes), code);
  nQELM100::tObject* const object = reader.readObject(code);
  auto const* const copy = nQELM100::dynamicCast<tPlaces>(object);
  ASSERT_TRUE(copy != nullptr);
  EXPECT_EQ(places.isEquivalent(*copy, status), u32{1});
  nQELM100::destroyThroughClass(object);
  tPlaces::___unregisterClass();
}

TEST(ReportableOfClient, IsCloned) {
  tStatus2 status;
  tPlaces const places(listOf(kFirst, kSecond), status);
  i32 code = 0;
  auto* const clone = places.clone(code);
  auto const* const copy = nQELM100::dynamicCast<tPlaces>(clone);
  ASSERT_TRUE(copy != nullptr);
  EXPECT_EQ(places.isEquivalent(*copy, status), u32{1});
  clone->getClass(code).deleteInstance(clone, code);
}
