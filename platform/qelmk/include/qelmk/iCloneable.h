#pragma once

// An object that can be copied without knowing its class.

#include "compiler/types.h"
#include "qelmk/api.h"
#include "qelmk/classMacros.h"
#include "qelmk/tObject.h"

namespace nQELM100 {

class QELM_API iCloneable : public virtual tObject {
  QELM_DECLARE_INTERFACE(iCloneable, tObject)

 public:
  // A new object of the same class with equal content, owned by the caller, who destroys it through
  // its class (tClass::deleteInstance). Null with the reason in `status` on failure; a negative
  // `status` on entry is kept and nothing is made. IRQL <= DISPATCH_LEVEL.
  [[nodiscard]] virtual iCloneable* clone(i32& status) const = 0;
};

}  // namespace nQELM100
