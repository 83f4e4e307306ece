#include "oxdiagk/tPropertyIDReportable.h"

#include "oxdiagk/reportableLists.h"

QELM_DEFINE_CLASS(nOXDIAG100::tPropertyIDReportable, "nOXDIAG100::tPropertyIDReportable")

namespace nOXDIAG100 {
namespace {

constexpr char kSourceTag[] = "source/status/tPropertyIDReportable";

}  // namespace

tPropertyIDReportable::tPropertyIDReportable(tStatus2&) {
}

tPropertyIDReportable::tPropertyIDReportable(i32 id, tStatus2& status) {
  copyReportableList(ids, &id, 1, status, kSourceTag);
}

tPropertyIDReportable::tPropertyIDReportable(_STL::vector<i32> const& propertyIDs,
                                             tStatus2& status) {
  copyReportableList(ids, propertyIDs.data(), propertyIDs.size(), status, kSourceTag);
}

_STL::vector<i32> const& tPropertyIDReportable::getData(tStatus2&) const {
  return ids.get();
}

void tPropertyIDReportable::generateReport(iReportableTranslator const& translator,
                                           _STL::wstring& output, tStatus2& status) const {
  tReportText report(translator, output, status, kSourceTag);
  renderReportableList(report, ids, tEmptyTexts::kLeftOut,
                       [&](i32 id) { return translator.translatePropertyID(id, status); });
}

u32 tPropertyIDReportable::isEquivalent(iVariantReportable const& other, tStatus2& status) const {
  auto const* const match = castToClassOf(*this, other, status, kSourceTag);
  return match != nullptr && match->ids == ids;
}

nQELM100::iCloneable* tPropertyIDReportable::clone(i32& status) const {
  return cloneReportable(*this, status);
}

void tPropertyIDReportable::writeExternal(nQELM100::iObjectWriter& writer, i32& status) const {
  writeReportableList(writer, ids, status);
}

void tPropertyIDReportable::readExternal(nQELM100::iObjectReader& reader, i32& status) {
  readReportableList(reader, ids, status);
}

}  // namespace nOXDIAG100
