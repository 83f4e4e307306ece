#pragma once

// An object that can be copied and externalized; adds nothing to the two.

#include "qelmk/api.h"
#include "qelmk/classMacros.h"
#include "qelmk/iCloneable.h"
#include "qelmk/iExternalizable.h"

namespace nQELM100 {

class QELM_API iCloneableExternalizable : public virtual iCloneable,
                                          public virtual iExternalizable {
  QELM_DECLARE_INTERFACE(iCloneableExternalizable, iCloneable, iExternalizable)
};

}  // namespace nQELM100
