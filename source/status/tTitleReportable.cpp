#include "oxdiagk/tTitleReportable.h"

#include "oxdiagk/reportableClass.h"
#include "oxdiagk/tReportText.h"

QELM_DEFINE_CLASS(nOXDIAG100::tTitleReportable, "nOXDIAG100::tTitleReportable")

namespace nOXDIAG100 {

tTitleReportable::tTitleReportable(tStatus2&) {
}

void tTitleReportable::generateReport(iReportableTranslator const& translator,
                                      _STL::wstring& output, tStatus2& status) const {
  tReportText(translator, output, status, "source/status/tTitleReportable").applyTitle();
}

u32 tTitleReportable::isEquivalent(iVariantReportable const& other, tStatus2&) const {
  return areOfOneClass(*this, other);
}

nQELM100::iCloneable* tTitleReportable::clone(i32& status) const {
  return cloneReportable(*this, status);
}

void tTitleReportable::writeExternal(nQELM100::iObjectWriter&, i32&) const {
}

void tTitleReportable::readExternal(nQELM100::iObjectReader&, i32&) {
}

}  // namespace nOXDIAG100
