#include "qelmk/iCloneable.h"

QELM_DEFINE_INTERFACE(nQELM100::iCloneable, "nQELM100::iCloneable")
