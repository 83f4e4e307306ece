#include "qelmk/iCloneableExternalizable.h"

QELM_DEFINE_INTERFACE(nQELM100::iCloneableExternalizable, "nQELM100::iCloneableExternalizable")
