#pragma once

// A stream that objects are read from.

#include "compiler/types.h"
#include "stl/string.h"

namespace nQELM100 {

class tObject;

// The counterpart of iObjectWriter: the items are read in the order in which they were written.
// Every operation reads one item, or does nothing when `status` is negative on entry; a failure,
// such as the end of the stream, is stored in `status` and leaves `value` alone; a success leaves
// `status` alone. Locking and IRQL are the implementer's.
class iObjectReader {
 public:
  static constexpr u64 kUnlimitedItems = ~u64{0};

  virtual void readCharacter(char& value, i32& status) = 0;
  virtual void readI32(i32& value, i32& status) = 0;
  virtual void readU32(u32& value, i32& status) = 0;
  virtual void readI64(i64& value, i32& status) = 0;
  virtual void readU64(u64& value, i32& status) = 0;

  // Exhausted memory is a failure too: kStatusOutOfMemory.
  virtual void readString(_STL::string& value, i32& status) = 0;
  virtual void readWideString(_STL::wstring& value, i32& status) = 0;

  // Makes the object that was written. The caller owns it and destroys it through its class:
  //
  //     object->getClass(status).deleteInstance(object, status);
  //
  // Null when a null object was written, and null with the reason in `status` on failure.
  virtual tObject* readObject(i32& status) = 0;

  // No more items than this can follow, in the object that is being read or else in the stream;
  // kUnlimitedItems when the stream cannot tell. What reads a count of items checks it against
  // this, so that an impossible count is refused at once:
  //
  //     reader.readU32(count, status);
  //     if (status >= 0 && count > reader.getMostItems()) status = kStatusStreamMalformed;
  //     if (status < 0) return;
  //
  // A count that passes may still be a lie. Room is made item by item as they are read, never for
  // the whole count: an element may take more memory than the least that it takes of the stream,
  // and objects that lie in one another can all claim the same bytes. What lists take in memory is
  // bounded by the sizes of the numbers that are read: of a stream that packs them into fewer bytes
  // than they have, it is that many times more.
  virtual u64 getMostItems() const = 0;

  // After a readObject that failed: whether the reader is behind the object all the same, so that
  // the item after it can be read. A reader that does not know where an object ends, such as one
  // without this operation of its own, is at no item that anybody knows.
  //
  //     tObject* const object = reader.readObject(status);
  //     if (status < 0 && !reader.isPastFailedObject()) return;
  virtual bool isPastFailedObject() const { return false; }

  // Reads `count` characters, each an item: a failure leaves alone those of `values` that could not
  // be read. Without this operation of its own a reader is asked for one after the other.
  virtual void readCharacters(char* values, u32 count, i32& status) {
    for (u32 index = 0; index < count; ++index) readCharacter(values[index], status);
  }

 protected:
  ~iObjectReader() = default;
};

}  // namespace nQELM100
