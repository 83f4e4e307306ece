#pragma once

// A stream that objects are read from.

#include "ntos/types.h"

namespace nQELM100 {

class tObject;

// The counterpart of iObjectWriter: the items are read in the order in which they were written.
// Every operation reads one item, or does nothing when `status` is negative on entry; a failure,
// such as the end of the stream, is stored in `status` and leaves `value` alone; a success leaves
// `status` alone. Locking and IRQL are the implementer's.
class iObjectReader {
 public:
  virtual void readCharacter(char& value, i32& status) = 0;
  virtual void readI32(i32& value, i32& status) = 0;
  virtual void readU32(u32& value, i32& status) = 0;

  // Makes the object that was written. The caller owns it and destroys it through its class:
  //
  //     object->getClass(status).deleteInstance(object, status);
  //
  // Null when a null object was written, and null with the reason in `status` on failure.
  virtual tObject* readObject(i32& status) = 0;

 protected:
  ~iObjectReader() = default;
};

}  // namespace nQELM100
