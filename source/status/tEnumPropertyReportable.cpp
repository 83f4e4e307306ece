#include "oxdiagk/tEnumPropertyReportable.h"

#include "oxdiagk/reportableLists.h"

QELM_DEFINE_CLASS(nOXDIAG100::tEnumPropertyReportable, "nOXDIAG100::tEnumPropertyReportable")

namespace nOXDIAG100 {
namespace {

constexpr char kSourceTag[] = "source/status/tEnumPropertyReportable";

}  // namespace

tEnumPropertyReportable::tEnumPropertyReportable(tStatus2&) {
}

tEnumPropertyReportable::tEnumPropertyReportable(i32 id, i32 value, tStatus2& status) {
  copyReportableList(values, &value, 1, status, kSourceTag);
  if (!holdsError(status)) propertyID = id;
}

tEnumPropertyReportable::tEnumPropertyReportable(i32 id, _STL::vector<i32> const& propertyValues,
                                                 tStatus2& status) {
  copyReportableList(values, propertyValues.data(), propertyValues.size(), status, kSourceTag);
  if (!holdsError(status)) propertyID = id;
}

tEnumPropertyReportable::tEnumPropertyReportable(tEnumPropertyReportable const& other)
    : tObject(other), iVariantReportable(other) {
  *this = other;
}

tEnumPropertyReportable& tEnumPropertyReportable::operator=(tEnumPropertyReportable const& other) {
  if (values.assign(other.values.data(), other.values.size())) propertyID = other.propertyID;
  return *this;
}

i32 const& tEnumPropertyReportable::getPropertyID(tStatus2&) const {
  return propertyID;
}

_STL::vector<i32> const& tEnumPropertyReportable::getPropertyValues(tStatus2&) const {
  return values.get();
}

void tEnumPropertyReportable::generateReport(iReportableTranslator const& translator,
                                             _STL::wstring& output, tStatus2& status) const {
  tReportText report(translator, output, status, kSourceTag);
  renderReportableList(report, values, tEmptyTexts::kLeftOut, [&](i32 value) {
    return translator.translateEnumValue(propertyID, value, status);
  });
}

u32 tEnumPropertyReportable::isEquivalent(iVariantReportable const& other, tStatus2& status) const {
  auto const* const match = castToClassOf(*this, other, status, kSourceTag);
  return match != nullptr && match->propertyID == propertyID && match->values == values;
}

nQELM100::iCloneable* tEnumPropertyReportable::clone(i32& status) const {
  return cloneReportable(*this, status);
}

void tEnumPropertyReportable::writeExternal(nQELM100::iObjectWriter& writer, i32& status) const {
  if (status < 0) return;
  writer.writeI32(propertyID, status);
  writeReportableList(writer, values, status);
}

void tEnumPropertyReportable::readExternal(nQELM100::iObjectReader& reader, i32& status) {
  i32 id = 0;
  if (status >= 0) reader.readI32(id, status);
  readReportableList(reader, values, status);
  if (status >= 0) propertyID = id;
}

}  // namespace nOXDIAG100
