#pragma once

#include "oxdiagk/iTraceable.h"

namespace nOXDIAG100 {

// A GUID that writes itself as the registry does, {6E0B2C51-7A1D-4F38-935E-204CB817D962}; what
// asGuid of "oxdiagk/kernelValues.h" returns. It refers to the GUID, which must live as long as it
// is used. Null is written as (null).
//
// Allocates nothing; any thread, any IRQL at which the GUID may be read.
class OXDIAG_API tGUIDText final : public iTraceable {
 public:
  // `guid`: its 16 bytes as they lie in memory, or null.
  explicit tGUIDText(void const* guid);

  void put(tTrace& trace) const override;

 private:
  void const* guid;
};

}  // namespace nOXDIAG100
