#pragma once

// Reads items from bytes that a tBinaryObjectWriter wrote, or that somebody made up.

#include "qelmk/api.h"
#include "qelmk/binaryStream.h"
#include "qelmk/iObjectReader.h"
#include "qelmk/tClassImplementation.h"

namespace nQELM100 {

// The form is that of "qelmk/binaryStream.h". No byte is trusted: each length is checked against
// what is left before anything is allocated, objects lie at most kMostObjectDepth deep, and inside
// of an object nothing is read beyond its content.
//
//     tBinaryObjectReader reader(bytes, size, status);
//     tStatus2 status2;
//     status2.readExternal(reader, status);
//     if (status < 0) complain(reader.getFailurePosition());
//
// The bytes stay the caller's and must not change meanwhile. Not locked. IRQL <= DISPATCH_LEVEL as
// far as the memory and the objects allow, <= APC_LEVEL for objects.
//
// Failures, all negative:
//   kStatusStreamEnded      the item is longer than what is left of the stream, or of the content
//                           of the object that is being read
//   kStatusStreamMalformed  an object's class has an impossible name
//   kStatusStreamTooDeep    an object lies too deep in others
//   kStatusClassUnknown     the class of an object is not registered
//   kStatusClassAbstract    it has no instances
//   kStatusClassMismatch    it is not externalizable
//   kStatusOutOfMemory      no memory for a text or an object
//   and what the readExternal of an object fails with
//
// A failure leaves the reader in front of the item, unless the item is an object of which all bytes
// are there: then the reader is behind the object (isPastFailedObject), and a caller with a fresh
// status reads the next item. An object that could not be read whole is destroyed, never returned.
class QELM_API tBinaryObjectReader final : public iObjectReader {
 public:
  // Begins to read the stream in the `size` bytes at `stream`; null is an empty stream. Failures:
  //   kStatusStreamEnded      less than a header
  //   kStatusStreamBadHeader  the bytes are no such stream
  //   kStatusStreamNewer      a stream of a later version
  // After one of them, and with an error in `status` on entry, nothing can be read.
  tBinaryObjectReader(void const* stream, size_t size, i32& status);
  tBinaryObjectReader(tBinaryObjectReader const&) = delete;
  tBinaryObjectReader& operator=(tBinaryObjectReader const&) = delete;

  // Bytes read and passed over, the header included.
  size_t getPosition() const { return position; }

  // Whether nothing is left, of the object that is being read or else of the stream. Streams that
  // follow each other in one file are read so: the next one begins where getPosition() is when the
  // items of the first are read.
  bool isAtEnd() const { return position == end; }

  // The offset of the item at which the first failure occurred; for an object, of the item in it.
  // 0 as long as there was none, and when it was in the header.
  size_t getFailurePosition() const { return failurePosition; }

  void readCharacter(char& value, i32& status) override;
  void readI32(i32& value, i32& status) override;
  void readU32(u32& value, i32& status) override;
  void readI64(i64& value, i32& status) override;
  void readU64(u64& value, i32& status) override;
  void readString(_STL::string& value, i32& status) override;
  void readWideString(_STL::wstring& value, i32& status) override;
  tObject* readObject(i32& status) override;

  // The bytes that are left: every item takes one at least.
  u64 getMostItems() const override { return end - position; }

  // True when all bytes of the object are there.
  bool isPastFailedObject() const override { return isPastObject; }

  void readCharacters(char* values, u32 count, i32& status) override;

 private:
  // What stands in front of the content of an object.
  struct tHead {
    char const* name = nullptr;
    u16 nameLength = 0;  // 0 for a null object
    u32 contentLength = 0;
  };

  i32 readHeader();
  i32 readHead(tHead& head);
  tObject* readContent(tHead const& head, size_t start, i32& status);
  tObject* makeObject(tHead const& head, size_t start, i32& status);
  tClassImplementation const* findClass(tHead const& head);
  template <class tNumber>
  bool takeNumber(tNumber& value);
  template <class tNumber>
  void readNumber(tNumber& value, i32& status);
  template <class tText>
  i32 takeText(tText& value);
  template <class tText>
  void readText(tText& value, i32& status);
  u8 const* take(size_t size);
  void fail(size_t place, i32 code, i32& status);

  u8 const* bytes;
  size_t end;  // of the content of the innermost object that is being read, or of the stream
  size_t position = 0;
  size_t failurePosition = 0;
  // The class of the latest object, for the next one is often of the same class, and the classes
  // that had been taken out of the registry when it was found.
  tClassImplementation const* latestClass = nullptr;
  u64 latestRemovals = 0;

  u32 depth = 0;
  bool hasFailed = false;
  bool isPastObject = false;
};

}  // namespace nQELM100
