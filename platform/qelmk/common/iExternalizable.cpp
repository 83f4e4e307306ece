#include "qelmk/iExternalizable.h"

QELM_DEFINE_INTERFACE(nQELM100::iExternalizable, "nQELM100::iExternalizable")
