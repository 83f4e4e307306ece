#include "oxdiagk/iVariantReportable.h"

QELM_DEFINE_INTERFACE(nOXDIAG100::iVariantReportable, "nOXDIAG100::iVariantReportable")
