#include "oxdiagk/iReportableTranslatorForI64.h"

QELM_DEFINE_INTERFACE(nOXDIAG100::iReportableTranslatorForI64,
                      "nOXDIAG100::iReportableTranslatorForI64")

namespace nOXDIAG100 {

iReportableTranslatorForI64::~iReportableTranslatorForI64() = default;

}  // namespace nOXDIAG100
