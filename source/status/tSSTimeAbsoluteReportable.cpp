#include "oxdiagk/tSSTimeAbsoluteReportable.h"

#include "oxdiagk/iReportableTranslatorTimeAbsolute.h"
#include "oxdiagk/reportableLists.h"

QELM_DEFINE_CLASS(nOXDIAG100::tSSTimeAbsoluteReportable, "nOXDIAG100::tSSTimeAbsoluteReportable")

namespace nOXDIAG100 {
namespace {

constexpr char kSourceTag[] = "source/status/tSSTimeAbsoluteReportable";

}  // namespace

tSSTimeAbsoluteReportable::tSSTimeAbsoluteReportable(tStatus2&) {
}

tSSTimeAbsoluteReportable::tSSTimeAbsoluteReportable(tSSTimeAbsolute const& time,
                                                     tStatus2& status) {
  copyReportableList(times, &time, 1, status, kSourceTag);
}

tSSTimeAbsoluteReportable::tSSTimeAbsoluteReportable(_STL::vector<tSSTimeAbsolute> const& values,
                                                     tStatus2& status) {
  copyReportableList(times, values.data(), values.size(), status, kSourceTag);
}

_STL::vector<tSSTimeAbsolute> const& tSSTimeAbsoluteReportable::getAbsoluteTimes(tStatus2&) const {
  return times.get();
}

void tSSTimeAbsoluteReportable::generateReport(iReportableTranslator const& translator,
                                               _STL::wstring& output, tStatus2& status) const {
  tReportText report(translator, output, status, kSourceTag);
  auto const* const forTimes = report.findTranslatorForTimes();
  if (forTimes == nullptr) {
    if (times.empty()) report.appendEmptyContainer();
    return;
  }
  renderReportableList(report, times, tEmptyTexts::kKept, [&](tSSTimeAbsolute const& time) {
    return forTimes->translateTimeAbsolute(time, status);
  });
}

u32 tSSTimeAbsoluteReportable::isEquivalent(iVariantReportable const& other,
                                            tStatus2& status) const {
  auto const* const match = castToClassOf(*this, other, status, kSourceTag);
  return match != nullptr && match->times == times;
}

nQELM100::iCloneable* tSSTimeAbsoluteReportable::clone(i32& status) const {
  return cloneReportable(*this, status);
}

void tSSTimeAbsoluteReportable::writeExternal(nQELM100::iObjectWriter& writer, i32& status) const {
  writeReportableList(writer, times, status);
}

void tSSTimeAbsoluteReportable::readExternal(nQELM100::iObjectReader& reader, i32& status) {
  readReportableList(reader, times, status);
}

}  // namespace nOXDIAG100
