// A client's use of the templates: the library's instances, and one with a type of its own.

#include "oxdiagk/tBoundedRangeReportable.h"
#include "oxdiagk/tIntrinsicTypeReportable.h"

struct tPlace {
  u32 number = 0;

  bool operator==(tPlace const& other) const = default;
};

template <>
struct nOXDIAG100::tReportableValue<tPlace> {
  static constexpr char kIntrinsicName[] = "tPlaces";
  static constexpr char kRangeName[] = "tPlaceRange";

  static void write(nQELM100::iObjectWriter& writer, tPlace value, i32& status) {
    writer.writeU32(value.number, status);
  }
  static void read(nQELM100::iObjectReader& reader, tPlace& value, i32& status) {
    reader.readU32(value.number, status);
  }
  static _STL::wstring translate(tReportText& report, tPlace value) {
    return tReportableValue<u32>::translate(report, value.number);
  }
};

template class nOXDIAG100::tIntrinsicTypeReportable<tPlace>;
template class nOXDIAG100::tBoundedRangeReportable<tPlace>;

u32 compare(_STL::vector<_STL::wstring> const& texts, nOXDIAG100::tStatus2& status) {
  using namespace nOXDIAG100;
  tIntrinsicTypeReportable<i32> const i32Value(i32{-1}, status);
  tIntrinsicTypeReportable<u32> const u32Value(u32{1}, status);
  tIntrinsicTypeReportable<i64> const i64Value(i64{-1}, status);
  tIntrinsicTypeReportable<u64> const u64Value(u64{1}, status);
  tIntrinsicTypeReportable<_STL::wstring> const textValues(texts, status);
  tBoundedRangeReportable<i32> const i32Range(-1, 1, status);
  tBoundedRangeReportable<u32> const u32Range(1, 2, status);
  tBoundedRangeReportable<u32> const largestRange(u32{1}, 0xFFFFFFFF, status);
  tBoundedRangeReportable<i64> const i64Range(-1, 1, status);
  tBoundedRangeReportable<u64> const u64Range(1, 2, status);
  tIntrinsicTypeReportable<tPlace> const places(tPlace{1}, status);
  tBoundedRangeReportable<tPlace> const placeRange(tPlace{1}, tPlace{2}, status);
  return i32Value.isEquivalent(u32Value, status) + i64Value.isEquivalent(u64Value, status) +
         textValues.isEquivalent(i32Range, status) + largestRange.isEquivalent(u32Range, status) +
         u32Range.isEquivalent(i64Range, status) + u64Range.isEquivalent(places, status) +
         placeRange.isEquivalent(places, status);
}
