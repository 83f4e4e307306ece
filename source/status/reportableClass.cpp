#include "oxdiagk/reportableClass.h"

#include "oxdiagk/statusCodes.h"
#include "oxdiagk/tStatus2.h"
#include "qelmk/tClass.h"

#define OXDIAG_STATUS_FILE "source/status/reportableClass"
#include "status/libraryStatus.h"

QELM_DEFINE_INTERFACE(nOXDIAG100::iVariantReportable, "nOXDIAG100::iVariantReportable")

namespace nOXDIAG100 {

void recordReportableFailure(tStatus2& status, i32 code, tReportableSource const& source) {
  tStatusSetter const setter(status, code);
  if (setter.isNeeded()) {
    setter.setWithStackTrace(OXDIAG_STATUS_COMPONENT, source.tag, source.line, nullptr);
  }
}

u32 areOfOneClass(iVariantReportable const& one, iVariantReportable const& other) {
  i32 status = 0;
  nQELM100::tClass const itsClass = one.getClass(status);
  return itsClass.isValid() && itsClass == other.getClass(status);
}

u32 holdsError(tStatus2 const& status) {
  return status.isError();
}

}  // namespace nOXDIAG100
