#include "oxdiagk/iReportableTranslator.h"

namespace nOXDIAG100 {

iReportableTranslator::~iReportableTranslator() = default;

}  // namespace nOXDIAG100
