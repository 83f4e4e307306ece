#pragma once

// What the templates of reportables need to know about the type of their values.

#include "compiler/types.h"
#include "oxdiagk/iReportableTranslator.h"
#include "oxdiagk/tReportText.h"
#include "qelmk/iObjectReader.h"
#include "qelmk/iObjectWriter.h"
#include "qelmk/tGUID.h"
#include "stl/string.h"
#include "vexk/tSSTimeAbsolute.h"

namespace nOXDIAG100 {

// One specialisation a type:
//
//   kIntrinsicName   the registered name of tIntrinsicTypeReportable<T>
//   kRangeName       the registered name of tBoundedRangeReportable<T>; not needed without ranges
//   write            writes a value to a stream; as iObjectWriter's operations
//   read             reads it back; a failure leaves the value alone. One call reads one item of
//                    the stream at least
//   translate        the text of a value in a report; as iReportableTranslator's operations
//
// A client that has values of another type T specialises this for T, in namespace nOXDIAG100, and
// can then use the two templates with it. T needs a default constructor, copying, and an operator==
// that a const object has; for a list also a noexcept move (or copy) constructor, and a hasFailed
// when its copying can fail, as _STL::vector says; for a range that it is copied without memory.
// While a list grows it takes 3 * sizeof(T) bytes a value, so a T with at most twice the bytes that
// `read` takes of a stream keeps the bound that the library's own lists keep.
//
// Each instance is a class of its own. It can be cloned and rendered as it is, but written to a
// binary stream and read from one only while it is registered (else kStatusClassUnknown): the
// client's module registers it when it starts and unregisters it when it stops.
//
//     template <>
//     struct nOXDIAG100::tReportableValue<tPlace> { ... };
//
//     using tPlaces = nOXDIAG100::tIntrinsicTypeReportable<tPlace>;
//     tPlaces::___registerClass(status);  // at the start of the module
//     tPlaces::___unregisterClass();      // at its stop
template <class T>
struct tReportableValue;

template <>
struct tReportableValue<i32> {
  static constexpr char kIntrinsicName[] = "nOXDIAG100::tIntrinsicTypeReportable<i32>";
  static constexpr char kRangeName[] = "nOXDIAG100::tBoundedRangeReportable<i32>";

  static void write(nQELM100::iObjectWriter& writer, i32 value, i32& status) {
    writer.writeI32(value, status);
  }
  static void read(nQELM100::iObjectReader& reader, i32& value, i32& status) {
    reader.readI32(value, status);
  }
  static _STL::wstring translate(tReportText& report, i32 value) {
    return report.getTranslator().translateI32(value, report.getStatus());
  }
};

template <>
struct tReportableValue<u32> {
  static constexpr char kIntrinsicName[] = "nOXDIAG100::tIntrinsicTypeReportable<u32>";
  static constexpr char kRangeName[] = "nOXDIAG100::tBoundedRangeReportable<u32>";

  static void write(nQELM100::iObjectWriter& writer, u32 value, i32& status) {
    writer.writeU32(value, status);
  }
  static void read(nQELM100::iObjectReader& reader, u32& value, i32& status) {
    reader.readU32(value, status);
  }
  static _STL::wstring translate(tReportText& report, u32 value) {
    return report.getTranslator().translateU32(value, report.getStatus());
  }
};

template <>
struct tReportableValue<i64> {
  static constexpr char kIntrinsicName[] = "nOXDIAG100::tIntrinsicTypeReportable<i64>";
  static constexpr char kRangeName[] = "nOXDIAG100::tBoundedRangeReportable<i64>";

  static void write(nQELM100::iObjectWriter& writer, i64 const& value, i32& status) {
    writer.writeI64(value, status);
  }
  static void read(nQELM100::iObjectReader& reader, i64& value, i32& status) {
    reader.readI64(value, status);
  }
  static _STL::wstring translate(tReportText& report, i64 const& value) {
    return report.translateI64(value);
  }
};

template <>
struct tReportableValue<u64> {
  static constexpr char kIntrinsicName[] = "nOXDIAG100::tIntrinsicTypeReportable<u64>";
  static constexpr char kRangeName[] = "nOXDIAG100::tBoundedRangeReportable<u64>";

  static void write(nQELM100::iObjectWriter& writer, u64 const& value, i32& status) {
    writer.writeU64(value, status);
  }
  static void read(nQELM100::iObjectReader& reader, u64& value, i32& status) {
    reader.readU64(value, status);
  }
  static _STL::wstring translate(tReportText& report, u64 const& value) {
    return report.getTranslator().translateU64(value, report.getStatus());
  }
};

template <>
struct tReportableValue<_STL::wstring> {
  static constexpr char kIntrinsicName[] = "nOXDIAG100::tIntrinsicTypeReportable<_STL::wstring>";

  static void write(nQELM100::iObjectWriter& writer, _STL::wstring const& value, i32& status) {
    writer.writeWideString(value, status);
  }
  static void read(nQELM100::iObjectReader& reader, _STL::wstring& value, i32& status) {
    reader.readWideString(value, status);
  }
  static _STL::wstring translate(tReportText& report, _STL::wstring const& value) {
    return report.getTranslator().translateWideString(value, report.getStatus());
  }
};

template <>
struct tReportableValue<nQELM100::tGUID> {
  static void write(nQELM100::iObjectWriter& writer, nQELM100::tGUID const& value, i32& status) {
    value.writeExternal(writer, status);
  }
  static void read(nQELM100::iObjectReader& reader, nQELM100::tGUID& value, i32& status) {
    value.readExternal(reader, status);
  }
  static _STL::wstring translate(tReportText& report, nQELM100::tGUID const& value) {
    return report.getTranslator().translateGUID(value, report.getStatus());
  }
};

// Times are written from the highest word to the lowest. Their text needs an interface of its own,
// which tSSTimeAbsoluteReportable asks for.
template <>
struct tReportableValue<tSSTimeAbsolute> {
  static void write(nQELM100::iObjectWriter& writer, tSSTimeAbsolute const& value, i32& status) {
    for (u32 word = tSSTimeAbsolute::kWordCount; word-- != 0;) {
      writer.writeU32(value.words[word], status);
    }
  }
  static void read(nQELM100::iObjectReader& reader, tSSTimeAbsolute& value, i32& status) {
    tSSTimeAbsolute fresh;
    for (u32 word = tSSTimeAbsolute::kWordCount; word-- != 0;) {
      reader.readU32(fresh.words[word], status);
    }
    if (status >= 0) value = fresh;
  }
};

}  // namespace nOXDIAG100
