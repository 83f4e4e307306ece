#include "oxdiagk/iReportableTranslatorForEmptyContainers.h"

QELM_DEFINE_INTERFACE(nOXDIAG100::iReportableTranslatorForEmptyContainers,
                      "nOXDIAG100::iReportableTranslatorForEmptyContainers")

namespace nOXDIAG100 {

iReportableTranslatorForEmptyContainers::~iReportableTranslatorForEmptyContainers() = default;

}  // namespace nOXDIAG100
