#include "oxdiagk/tGUIDReportable.h"

#include "oxdiagk/reportableLists.h"

QELM_DEFINE_CLASS(nOXDIAG100::tGUIDReportable, "nOXDIAG100::tGUIDReportable")

namespace nOXDIAG100 {
namespace {

constexpr char kSourceTag[] = "source/status/tGUIDReportable";

}  // namespace

tGUIDReportable::tGUIDReportable(tStatus2&) {
}

tGUIDReportable::tGUIDReportable(nQELM100::tGUID const& guid, tStatus2& status) {
  copyReportableList(guids, &guid, 1, status, kSourceTag);
}

tGUIDReportable::tGUIDReportable(_STL::vector<nQELM100::tGUID> const& values, tStatus2& status) {
  copyReportableList(guids, values.data(), values.size(), status, kSourceTag);
}

_STL::vector<nQELM100::tGUID> const& tGUIDReportable::getGUIDs(tStatus2&) const {
  return guids.get();
}

void tGUIDReportable::generateReport(iReportableTranslator const& translator, _STL::wstring& output,
                                     tStatus2& status) const {
  tReportText report(translator, output, status, kSourceTag);
  renderReportableList(report, guids, tEmptyTexts::kKept, [&](nQELM100::tGUID const& guid) {
    return tReportableValue<nQELM100::tGUID>::translate(report, guid);
  });
}

u32 tGUIDReportable::isEquivalent(iVariantReportable const& other, tStatus2& status) const {
  auto const* const match = castToClassOf(*this, other, status, kSourceTag);
  return match != nullptr && match->guids == guids;
}

nQELM100::iCloneable* tGUIDReportable::clone(i32& status) const {
  return cloneReportable(*this, status);
}

void tGUIDReportable::writeExternal(nQELM100::iObjectWriter& writer, i32& status) const {
  writeReportableList(writer, guids, status);
}

void tGUIDReportable::readExternal(nQELM100::iObjectReader& reader, i32& status) {
  readReportableList(reader, guids, status);
}

}  // namespace nOXDIAG100
