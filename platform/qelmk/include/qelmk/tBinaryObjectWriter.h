#pragma once

// Writes items as bytes into a caller's buffer.

#include "qelmk/api.h"
#include "qelmk/binaryStream.h"
#include "qelmk/iObjectWriter.h"

namespace nQELM100 {

class iExternalizable;
class tClassImplementation;

// The form is that of "qelmk/binaryStream.h". What does not fit the buffer is counted and not
// stored, so one pass tells whether it was large enough, and if not, how large it has to be:
//
//     u8 buffer[256];
//     tBinaryObjectWriter writer(buffer, sizeof(buffer));
//     status2.writeExternal(writer, status);
//     writer.finish(status);
//     if (status == kStatusStreamFull) { ... again with writer.getSize() bytes ... }
//
// A writer without buffer only counts. It allocates nothing. Not locked; the buffer is the
// caller's and outlives the writer. IRQL <= DISPATCH_LEVEL as far as the memory and the objects
// allow, <= APC_LEVEL for objects.
//
// Failures of writeObject, after which the stream is as it was before the object:
//   kStatusClassUnknown   the class is not registered, so no reader would find it
//   kStatusClassAbstract  the class has no instances of its own
//   kStatusClassMismatch  the object is not externalizable
//   kStatusStreamTooDeep  more than kMostObjectDepth objects in one another
//   kStatusStreamTooLong  the content has 4 GiB or more
//   and what its writeExternal fails with
// A text of more than 0xFFFFFFFF characters fails with kStatusStreamTooLong.
class QELM_API tBinaryObjectWriter final : public iObjectWriter {
 public:
  // Begins a stream with its header. `buffer` is null for a writer that only counts, whatever
  // `capacity` says; else it has `capacity` bytes.
  tBinaryObjectWriter(void* buffer, size_t capacity);
  tBinaryObjectWriter(tBinaryObjectWriter const&) = delete;
  tBinaryObjectWriter& operator=(tBinaryObjectWriter const&) = delete;

  // Bytes written and counted so far, the header included.
  size_t getSize() const { return position; }

  // Stores kStatusStreamFull in `status` when the buffer was too small: it then holds the beginning
  // of the stream up to the first item that did not fit. A writer without buffer is never full. An
  // error in `status` on entry is kept. Writing may go on.
  void finish(i32& status) const;

  void writeCharacter(char value, i32& status) override;
  void writeI32(i32 value, i32& status) override;
  void writeU32(u32 value, i32& status) override;
  void writeI64(i64 value, i32& status) override;
  void writeU64(u64 value, i32& status) override;
  void writeString(_STL::string const& value, i32& status) override;
  void writeWideString(_STL::wstring const& value, i32& status) override;
  void writeObject(tObject const* object, i32& status) override;
  void writeCharacters(char const* values, u32 count, i32& status) override;

 private:
  template <class tNumber>
  void writeNumber(tNumber value, i32& status);
  template <class tText>
  void writeText(tText const& value, i32& status);
  i32 checkObject(tClassImplementation const* record, iExternalizable const* content) const;
  void writeName(tClassImplementation const& record);
  void writeContent(iExternalizable const& content, i32& status);
  void store(void const* data, size_t size);
  void storeAt(size_t place, void const* data, size_t size);

  u8* bytes;
  size_t capacity;
  size_t position = 0;
  u32 depth = 0;
};

}  // namespace nQELM100
