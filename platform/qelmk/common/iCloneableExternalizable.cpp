#include "qelmk/iCloneableExternalizable.h"

// The interface and the two that it joins.

QELM_DEFINE_INTERFACE(nQELM100::iCloneable, "nQELM100::iCloneable")
QELM_DEFINE_INTERFACE(nQELM100::iExternalizable, "nQELM100::iExternalizable")
QELM_DEFINE_INTERFACE(nQELM100::iCloneableExternalizable, "nQELM100::iCloneableExternalizable")
