#pragma once

// Numbers and texts.

#include "compiler/types.h"
#include "oxdiagk/api.h"
#include "oxdiagk/iVariantReportable.h"
#include "oxdiagk/reportableLists.h"
#include "oxdiagk/tReportableValue.h"
#include "stl/string.h"
#include "stl/vector.h"

namespace nOXDIAG100 {

// One value or several of type T, which is i32, u32, i64, u64 or _STL::wstring. The library has
// these five; a client may have others, see tReportableValue.
//
//     tIntrinsicTypeReportable<u32> const slot(12u, status);
//     tIntrinsicTypeReportable<_STL::wstring> const line(_STL::wstring(L"slot 12"), status);
//
// In a report each value has the text that the translator has for its type. A signed 64-bit value
// needs an iReportableTranslatorForI64; for another translator its low half goes through
// translateI32.
//
// The order of the values is kept, and so are equal ones. Not locked; values come from long-lived
// memory. IRQL <= APC_LEVEL.
template <class T>
class tIntrinsicTypeReportable : public iVariantReportable {
  QELM_DECLARE_CLASS(tIntrinsicTypeReportable, iVariantReportable)

 public:
  // Without values.
  tIntrinsicTypeReportable() = default;

  // The same; leaves `status` alone.
  explicit tIntrinsicTypeReportable(tStatus2&) {}

  // One value, or a copy of a list. With an error in `status` on entry the object stays empty; a
  // list that cannot be allocated leaves it empty and records kStatusOutOfMemory.
  tIntrinsicTypeReportable(T const& value, tStatus2& status) {
    copyReportableList(values, &value, 1, status, kSourceTag);
  }
  tIntrinsicTypeReportable(_STL::vector<T> const& list, tStatus2& status) {
    copyReportableList(values, list.data(), list.size(), status, kSourceTag);
  }

  // hasFailed tells whether the copy could be made. A failed copy is empty; a failed assignment
  // leaves the old content.
  tIntrinsicTypeReportable(tIntrinsicTypeReportable const& other) = default;
  tIntrinsicTypeReportable& operator=(tIntrinsicTypeReportable const& other) = default;

  // True when memory ran out for values of this object, until others are read from a stream.
  bool hasFailed() const { return values.hasFailed(); }

  void generateReport(iReportableTranslator const& translator, _STL::wstring& output,
                      tStatus2& status) const override;
  u32 isEquivalent(iVariantReportable const& other, tStatus2& status) const override;
  nQELM100::iCloneable* clone(i32& status) const override { return cloneReportable(*this, status); }

  // In a stream: the count (u32), each value in the form of its type.
  void writeExternal(nQELM100::iObjectWriter& writer, i32& status) const override {
    writeReportableList(writer, values, status);
  }
  void readExternal(nQELM100::iObjectReader& reader, i32& status) override {
    readReportableList(reader, values, status);
  }

 private:
  static constexpr char kSourceTag[] = "source/status/tIntrinsicTypeReportable";

  tReportableList<T> values;
};

template <class T>
void tIntrinsicTypeReportable<T>::generateReport(iReportableTranslator const& translator,
                                                 _STL::wstring& output, tStatus2& status) const {
  tReportText report(translator, output, status, kSourceTag);
  renderReportableList(report, values, tEmptyTexts::kKept, [&](T const& value) {
    return tReportableValue<T>::translate(report, value);
  });
}

template <class T>
u32 tIntrinsicTypeReportable<T>::isEquivalent(iVariantReportable const& other,
                                              tStatus2& status) const {
  auto const* const match = castToClassOf(*this, other, status, kSourceTag);
  return match != nullptr && match->values == values;
}

QELM_DEFINE_CLASS_TEMPLATE(tIntrinsicTypeReportable, tReportableValue<T>::kIntrinsicName)

// The library's own.
extern template class OXDIAG_API_TEMPLATE tIntrinsicTypeReportable<i32>;
extern template class OXDIAG_API_TEMPLATE tIntrinsicTypeReportable<u32>;
extern template class OXDIAG_API_TEMPLATE tIntrinsicTypeReportable<i64>;
extern template class OXDIAG_API_TEMPLATE tIntrinsicTypeReportable<u64>;
extern template class OXDIAG_API_TEMPLATE tIntrinsicTypeReportable<_STL::wstring>;

}  // namespace nOXDIAG100
