#include "oxdiagk/iStringIDToWideStringConverter.h"

QELM_DEFINE_INTERFACE(nOXDIAG100::iStringIDToWideStringConverter,
                      "nOXDIAG100::iStringIDToWideStringConverter")
