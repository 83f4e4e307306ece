#pragma once

// Ranges of numbers.

#include "compiler/compiler.h"
#include "compiler/types.h"
#include "oxdiagk/api.h"
#include "oxdiagk/iVariantReportable.h"
#include "oxdiagk/reportableClass.h"
#include "oxdiagk/tReportText.h"
#include "oxdiagk/tReportableValue.h"

namespace nOXDIAG100 {

// Whether a value is a number that becomes a T, and whether that T then has another value.
template <class T, class tNumber>
concept isNumberFor = requires(tNumber number) {
  static_cast<T>(number) < 0;
  static_cast<tNumber>(static_cast<T>(number)) == number;
};
template <class T, class tNumber>
constexpr bool isLostIn(tNumber number) {
  if constexpr (isNumberFor<T, tNumber>) {
    T const held = static_cast<T>(number);
    return static_cast<tNumber>(held) != number || (held < 0) != (number < 0);
  }
  return false;
}

// The lower and the upper bound of a range, both part of it. T is i32, u32, i64 or u64. The library
// has these four; a client may have others, see tReportableValue, as long as a T is copied without
// memory.
//
//     tBoundedRangeReportable<u32> const slots(1, 16, status);
//
// In a report the bounds have the texts that tIntrinsicTypeReportable gives such values, with the
// range separator between them. Bounds are kept as they are given, in any order. Not locked.
// IRQL <= APC_LEVEL.
template <class T>
class tBoundedRangeReportable : public iVariantReportable {
  QELM_DECLARE_CLASS(tBoundedRangeReportable, iVariantReportable)

 public:
  // From zero to zero.
  tBoundedRangeReportable() = default;

  // The same; leaves `status` alone.
  explicit tBoundedRangeReportable(tStatus2&) {}

  // With an error in `status` on entry the range stays from zero to zero.
  tBoundedRangeReportable(T const& lowerBound, T const& upperBound, tStatus2& status) {
    if (holdsError(status)) return;
    lower = lowerBound;
    upper = upperBound;
  }

  // The same of numbers of other types, which become a T, as those of `slots` above do. A constant
  // that no T can hold, such as -1 of u32, is an error of the call where the compiler can say so:
  // clang can. Of other numbers the low bits count.
  template <class tLower, class tUpper>
  requires isNumberFor<T, tLower> && isNumberFor<T, tUpper> tBoundedRangeReportable(
      tLower lowerBound, tUpper upperBound, tStatus2& status)
  COMPILER_REFUSES_IF(isLostIn<T>(lowerBound) || isLostIn<T>(upperBound),
                      "the type of the range does not hold this bound");

  tBoundedRangeReportable(tBoundedRangeReportable const& other) = default;
  tBoundedRangeReportable& operator=(tBoundedRangeReportable const& other) = default;

  // Always false: a range can be copied without memory.
  bool hasFailed() const { return false; }

  void generateReport(iReportableTranslator const& translator, _STL::wstring& output,
                      tStatus2& status) const override;
  u32 isEquivalent(iVariantReportable const& other, tStatus2& status) const override;
  nQELM100::iCloneable* clone(i32& status) const override { return cloneReportable(*this, status); }

  // In a stream: the lower bound, the upper bound, in the form of their type. Both are given to the
  // writer whatever `status` holds; a writer does nothing with an error.
  void writeExternal(nQELM100::iObjectWriter& writer, i32& status) const override {
    tReportableValue<T>::write(writer, lower, status);
    tReportableValue<T>::write(writer, upper, status);
  }

  // A failure leaves both bounds as they were.
  void readExternal(nQELM100::iObjectReader& reader, i32& status) override;

 private:
  static constexpr char kSourceTag[] = "source/status/tBoundedRangeReportable";

  T lower{};
  T upper{};
};

template <class T>
template <class tLower, class tUpper>
requires isNumberFor<T, tLower> && isNumberFor<T, tUpper>
tBoundedRangeReportable<T>::tBoundedRangeReportable(tLower lowerBound, tUpper upperBound,
                                                    tStatus2& status)
    : tBoundedRangeReportable(T(static_cast<T>(lowerBound)), T(static_cast<T>(upperBound)),
                              status) {
}

template <class T>
void tBoundedRangeReportable<T>::generateReport(iReportableTranslator const& translator,
                                                _STL::wstring& output, tStatus2& status) const {
  tReportText report(translator, output, status, kSourceTag);
  report.begin();
  if (report.isGoing()) report.append(tReportableValue<T>::translate(report, lower));
  report.appendRangeSeparator();
  if (report.isGoing()) report.append(tReportableValue<T>::translate(report, upper));
}

template <class T>
u32 tBoundedRangeReportable<T>::isEquivalent(iVariantReportable const& other,
                                             tStatus2& status) const {
  auto const* const match = castToClassOf(*this, other, status, kSourceTag);
  return match != nullptr && match->lower == lower && match->upper == upper;
}

template <class T>
void tBoundedRangeReportable<T>::readExternal(nQELM100::iObjectReader& reader, i32& status) {
  T freshLower{};
  T freshUpper{};
  if (status >= 0) tReportableValue<T>::read(reader, freshLower, status);
  if (status >= 0) tReportableValue<T>::read(reader, freshUpper, status);
  if (status < 0) return;
  lower = freshLower;
  upper = freshUpper;
}

QELM_DEFINE_CLASS_TEMPLATE(tBoundedRangeReportable, tReportableValue<T>::kRangeName)

// The library's own.
extern template class OXDIAG_API_TEMPLATE tBoundedRangeReportable<i32>;
extern template class OXDIAG_API_TEMPLATE tBoundedRangeReportable<u32>;
extern template class OXDIAG_API_TEMPLATE tBoundedRangeReportable<i64>;
extern template class OXDIAG_API_TEMPLATE tBoundedRangeReportable<u64>;

}  // namespace nOXDIAG100
