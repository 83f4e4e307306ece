#include "oxdiagk/iReportableTranslator.h"

#include "oxdiagk/iReportableTranslatorForEmptyContainers.h"
#include "oxdiagk/iReportableTranslatorForI64.h"
#include "oxdiagk/iReportableTranslatorTimeAbsolute.h"

// The interface that every translator has, and those that it may have besides.

QELM_DEFINE_INTERFACE(nOXDIAG100::iReportableTranslatorForEmptyContainers,
                      "nOXDIAG100::iReportableTranslatorForEmptyContainers")
QELM_DEFINE_INTERFACE(nOXDIAG100::iReportableTranslatorForI64,
                      "nOXDIAG100::iReportableTranslatorForI64")
QELM_DEFINE_INTERFACE(nOXDIAG100::iReportableTranslatorTimeAbsolute,
                      "nOXDIAG100::iReportableTranslatorTimeAbsolute")

namespace nOXDIAG100 {

iReportableTranslator::~iReportableTranslator() = default;
iReportableTranslatorForEmptyContainers::~iReportableTranslatorForEmptyContainers() = default;
iReportableTranslatorForI64::~iReportableTranslatorForI64() = default;
iReportableTranslatorTimeAbsolute::~iReportableTranslatorTimeAbsolute() = default;

}  // namespace nOXDIAG100
