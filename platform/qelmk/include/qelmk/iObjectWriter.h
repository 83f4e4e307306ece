#pragma once

// A stream that objects are written to.

#include "compiler/types.h"
#include "stl/string.h"

namespace nQELM100 {

class tObject;

// Implemented by whoever provides the stream; its form (binary, text) is the implementer's matter.
// Every operation writes one item, or does nothing when `status` is negative on entry; a failure is
// stored in `status`, a success leaves it alone. Locking and IRQL are the implementer's.
class iObjectWriter {
 public:
  virtual void writeCharacter(char value, i32& status) = 0;
  virtual void writeI32(i32 value, i32& status) = 0;
  virtual void writeU32(u32 value, i32& status) = 0;
  virtual void writeI64(i64 value, i32& status) = 0;
  virtual void writeU64(u64 value, i32& status) = 0;

  // Text of any content and length, NUL included.
  virtual void writeString(_STL::string const& value, i32& status) = 0;
  virtual void writeWideString(_STL::wstring const& value, i32& status) = 0;

  // Writes an object so that iObjectReader::readObject makes one of the same class with the same
  // content. Null is an object too. The writer does not keep the object.
  virtual void writeObject(tObject const* object, i32& status) = 0;

  // Writes `count` characters, each an item. Without this operation of its own a writer is given
  // one after the other.
  virtual void writeCharacters(char const* values, u32 count, i32& status) {
    for (u32 index = 0; index < count; ++index) writeCharacter(values[index], status);
  }

 protected:
  ~iObjectWriter() = default;
};

}  // namespace nQELM100
