#include "oxdiagk/iReportableTranslatorTimeAbsolute.h"

QELM_DEFINE_INTERFACE(nOXDIAG100::iReportableTranslatorTimeAbsolute,
                      "nOXDIAG100::iReportableTranslatorTimeAbsolute")

namespace nOXDIAG100 {

iReportableTranslatorTimeAbsolute::~iReportableTranslatorTimeAbsolute() = default;

}  // namespace nOXDIAG100
