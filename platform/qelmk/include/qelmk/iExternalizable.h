#pragma once

// An object that writes its content to a stream and reads it back.

#include "compiler/types.h"
#include "qelmk/api.h"
#include "qelmk/classMacros.h"
#include "qelmk/tObject.h"

namespace nQELM100 {

class iObjectReader;
class iObjectWriter;

// Both operations do nothing when `status` is negative on entry, and leave it alone on success.
// IRQL as the stream's. On Windows they are slots 0 and 1 of this interface's own table: as a
// virtual base it does not continue that of tObject.
class QELM_API iExternalizable : public virtual tObject {
  QELM_DECLARE_INTERFACE(iExternalizable, tObject)

 public:
  // Writes the content, item by item.
  virtual void writeExternal(iObjectWriter& writer, i32& status) const = 0;

  // Replaces the content by what writeExternal wrote, reading the same items in the same order.
  virtual void readExternal(iObjectReader& reader, i32& status) = 0;
};

}  // namespace nQELM100
