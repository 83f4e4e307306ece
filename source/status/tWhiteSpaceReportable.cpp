#include "oxdiagk/tWhiteSpaceReportable.h"

#include "oxdiagk/reportableClass.h"

QELM_DEFINE_CLASS(nOXDIAG100::tWhiteSpaceReportable, "nOXDIAG100::tWhiteSpaceReportable")

namespace nOXDIAG100 {

tWhiteSpaceReportable::tWhiteSpaceReportable(tStatus2&) {
}

void tWhiteSpaceReportable::generateReport(iReportableTranslator const&, _STL::wstring&,
                                           tStatus2&) const {
}

u32 tWhiteSpaceReportable::isEquivalent(iVariantReportable const& other, tStatus2&) const {
  return areOfOneClass(*this, other);
}

nQELM100::iCloneable* tWhiteSpaceReportable::clone(i32& status) const {
  return cloneReportable(*this, status);
}

void tWhiteSpaceReportable::writeExternal(nQELM100::iObjectWriter&, i32&) const {
}

void tWhiteSpaceReportable::readExternal(nQELM100::iObjectReader&, i32&) {
}

}  // namespace nOXDIAG100
