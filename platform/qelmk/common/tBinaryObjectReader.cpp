#include "qelmk/tBinaryObjectReader.h"

#include "qelmk/classRegistry.h"
#include "qelmk/dynamicCast.h"
#include "qelmk/iExternalizable.h"
#include "qelmk/statusCodes.h"
#include "qelmk/tClass.h"
#include "tClassRegistry.h"

namespace nQELM100 {

tBinaryObjectReader::tBinaryObjectReader(void const* stream, size_t size, i32& status)
    : bytes(static_cast<u8 const*>(stream)), end(stream == nullptr ? 0 : size) {
  i32 const header = status < 0 ? status : readHeader();
  if (header >= 0) return;
  position = end = 0;
  fail(0, header, status);
}

i32 tBinaryObjectReader::readHeader() {
  u8 const* const magic = take(sizeof(kBinaryStreamMagic));
  if (magic == nullptr) return kStatusStreamEnded;
  if (__builtin_memcmp(magic, kBinaryStreamMagic, sizeof(kBinaryStreamMagic)) != 0) {
    return kStatusStreamBadHeader;
  }
  u32 version = 0;
  if (!takeNumber(version)) return kStatusStreamEnded;
  if (version == 0) return kStatusStreamBadHeader;
  return version > kBinaryStreamVersion ? kStatusStreamNewer : 0;
}

void tBinaryObjectReader::readCharacter(char& value, i32& status) {
  readNumber(value, status);
}

void tBinaryObjectReader::readI32(i32& value, i32& status) {
  readNumber(value, status);
}

void tBinaryObjectReader::readU32(u32& value, i32& status) {
  readNumber(value, status);
}

void tBinaryObjectReader::readI64(i64& value, i32& status) {
  readNumber(value, status);
}

void tBinaryObjectReader::readU64(u64& value, i32& status) {
  readNumber(value, status);
}

void tBinaryObjectReader::readString(_STL::string& value, i32& status) {
  readText(value, status);
}

void tBinaryObjectReader::readWideString(_STL::wstring& value, i32& status) {
  readText(value, status);
}

void tBinaryObjectReader::readCharacters(char* values, u32 count, i32& status) {
  if (status < 0) return;
  size_t const left = end - position;
  size_t const taken = count < left ? count : left;
  if (taken != 0) __builtin_memcpy(values, take(taken), taken);
  if (taken < count) fail(position, kStatusStreamEnded, status);
}

tObject* tBinaryObjectReader::readObject(i32& status) {
  if (status < 0) return nullptr;
  isPastObject = false;
  size_t const start = position;
  tHead head;
  i32 const headStatus = readHead(head);
  if (headStatus < 0) {
    fail(start, headStatus, status);
    position = start;
    return nullptr;
  }
  if (head.nameLength == 0) return nullptr;
  size_t const outerEnd = end;
  end = position + head.contentLength;
  tObject* const object = readContent(head, start, status);
  position = end;
  end = outerEnd;
  isPastObject = true;
  return object;
}

i32 tBinaryObjectReader::readHead(tHead& head) {
  if (!takeNumber(head.nameLength)) return kStatusStreamEnded;
  if (head.nameLength == 0) return 0;
  if (head.nameLength > kMostClassNameLength) return kStatusStreamMalformed;
  head.name = reinterpret_cast<char const*>(take(head.nameLength));
  if (head.name == nullptr || !takeNumber(head.contentLength)) return kStatusStreamEnded;
  return head.contentLength > end - position ? kStatusStreamEnded : 0;
}

tObject* tBinaryObjectReader::readContent(tHead const& head, size_t start, i32& status) {
  if (depth == kMostObjectDepth) {
    fail(start, kStatusStreamTooDeep, status);
    return nullptr;
  }
  tObject* const object = makeObject(head, start, status);
  if (object == nullptr) return nullptr;
  auto* const content = dynamicCast<iExternalizable>(object);
  ++depth;
  if (content != nullptr) {
    content->readExternal(*this, status);
  } else {
    fail(start, kStatusClassMismatch, status);
  }
  --depth;
  if (status >= 0) return object;
  fail(position, status, status);
  object->getClass(status).deleteInstance(object, status);
  return nullptr;
}

tObject* tBinaryObjectReader::makeObject(tHead const& head, size_t start, i32& status) {
  tClassImplementation const* const record = findClass(head);
  if (record == nullptr) {
    fail(start, kStatusClassUnknown, status);
    return nullptr;
  }
  tObject* const object = tClass(*record).newInstance(status);
  if (object == nullptr) fail(start, status, status);
  return object;
}

tClassImplementation const* tBinaryObjectReader::findClass(tHead const& head) {
  u64 const removals = qelmkClasses.getRemovals();
  bool const isLatest = latestClass != nullptr && latestRemovals == removals &&
                        latestClass->getNameLength() == head.nameLength &&
                        __builtin_memcmp(latestClass->getName(), head.name, head.nameLength) == 0;
  if (isLatest) return latestClass;
  latestClass = qelmkClasses.find(head.name, head.nameLength);
  latestRemovals = removals;
  return latestClass;
}

template <class tNumber>
bool tBinaryObjectReader::takeNumber(tNumber& value) {
  u8 const* const source = take(sizeof(value));
  if (source != nullptr) __builtin_memcpy(&value, source, sizeof(value));
  return source != nullptr;
}

template <class tNumber>
void tBinaryObjectReader::readNumber(tNumber& value, i32& status) {
  if (status >= 0 && !takeNumber(value)) fail(position, kStatusStreamEnded, status);
}

// A text is made beside `value`, which a failure leaves alone.
template <class tText>
i32 tBinaryObjectReader::takeText(tText& value) {
  u32 count = 0;
  if (!takeNumber(count)) return kStatusStreamEnded;
  size_t const size = count * sizeof(value[0]);
  u8 const* const source = take(size);
  if (source == nullptr) return kStatusStreamEnded;
  tText text;
  if (!text.resize(count)) return kStatusOutOfMemory;
  if (size != 0) __builtin_memcpy(text.begin(), source, size);
  value = _STL::move(text);
  return 0;
}

template <class tText>
void tBinaryObjectReader::readText(tText& value, i32& status) {
  if (status < 0) return;
  size_t const start = position;
  i32 const result = takeText(value);
  if (result >= 0) return;
  fail(start, result, status);
  position = start;
}

// The next bytes, or null, with nothing taken, when fewer are left.
u8 const* tBinaryObjectReader::take(size_t size) {
  if (size > end - position) return nullptr;
  u8 const* const taken = bytes + position;
  position += size;
  return taken;
}

void tBinaryObjectReader::fail(size_t place, i32 code, i32& status) {
  status = code;
  if (hasFailed) return;
  hasFailed = true;
  failurePosition = place;
}

}  // namespace nQELM100
