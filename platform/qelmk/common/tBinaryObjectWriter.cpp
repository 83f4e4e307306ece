#include "qelmk/tBinaryObjectWriter.h"

#include "qelmk/classRegistry.h"
#include "qelmk/dynamicCast.h"
#include "qelmk/iExternalizable.h"
#include "qelmk/statusCodes.h"
#include "qelmk/tClass.h"

namespace nQELM100 {
namespace {

constexpr u64 kMostLength = 0xFFFFFFFF;

}  // namespace

tBinaryObjectWriter::tBinaryObjectWriter(void* buffer, size_t bufferSize)
    : bytes(static_cast<u8*>(buffer)), capacity(buffer == nullptr ? 0 : bufferSize) {
  store(kBinaryStreamMagic, sizeof(kBinaryStreamMagic));
  store(&kBinaryStreamVersion, sizeof(kBinaryStreamVersion));
}

void tBinaryObjectWriter::finish(i32& status) const {
  if (status >= 0 && bytes != nullptr && position > capacity) status = kStatusStreamFull;
}

void tBinaryObjectWriter::writeCharacter(char value, i32& status) {
  writeNumber(value, status);
}

void tBinaryObjectWriter::writeI32(i32 value, i32& status) {
  writeNumber(value, status);
}

void tBinaryObjectWriter::writeU32(u32 value, i32& status) {
  writeNumber(value, status);
}

void tBinaryObjectWriter::writeI64(i64 value, i32& status) {
  writeNumber(value, status);
}

void tBinaryObjectWriter::writeU64(u64 value, i32& status) {
  writeNumber(value, status);
}

void tBinaryObjectWriter::writeString(_STL::string const& value, i32& status) {
  writeText(value, status);
}

void tBinaryObjectWriter::writeWideString(_STL::wstring const& value, i32& status) {
  writeText(value, status);
}

void tBinaryObjectWriter::writeObject(tObject const* object, i32& status) {
  if (object == nullptr) return writeNumber(u16{0}, status);
  if (status < 0) return;
  tClassImplementation const* const record = object->getClass(status).getRecord();
  auto const* const content = dynamicCast<iExternalizable>(object);
  i32 const refusal = checkObject(record, content);
  if (refusal < 0) {
    status = refusal;
    return;
  }
  size_t const start = position;
  writeName(*record);
  writeContent(*content, status);
  if (status < 0) position = start;
}

// Characters are items of their own, so those that fit are stored.
void tBinaryObjectWriter::writeCharacters(char const* values, u32 count, i32& status) {
  if (status < 0) return;
  size_t const room = position < capacity ? capacity - position : 0;
  storeAt(position, values, count < room ? count : room);
  position += count;
}

// A reader must find the class, and make an object of it.
i32 tBinaryObjectWriter::checkObject(tClassImplementation const* record,
                                     iExternalizable const* content) const {
  if (content == nullptr) return kStatusClassMismatch;
  if (record == nullptr || !record->isRegistered()) return kStatusClassUnknown;
  if (record->getFactory() == nullptr) return kStatusClassAbstract;
  return depth == kMostObjectDepth ? kStatusStreamTooDeep : 0;
}

void tBinaryObjectWriter::writeName(tClassImplementation const& record) {
  static_assert(kMostClassNameLength <= 0xFFFF);
  auto const length = static_cast<u16>(record.getNameLength());
  store(&length, sizeof(length));
  store(record.getName(), length);
}

// The length is known, and put in front, when the content is written.
void tBinaryObjectWriter::writeContent(iExternalizable const& content, i32& status) {
  u32 length = 0;
  size_t const lengthPlace = position;
  store(&length, sizeof(length));
  size_t const start = position;
  ++depth;
  content.writeExternal(*this, status);
  --depth;
  if (status < 0) return;
  if (position - start > kMostLength) {
    status = kStatusStreamTooLong;
    return;
  }
  length = static_cast<u32>(position - start);
  storeAt(lengthPlace, &length, sizeof(length));
}

template <class tNumber>
void tBinaryObjectWriter::writeNumber(tNumber value, i32& status) {
  if (status >= 0) store(&value, sizeof(value));
}

template <class tText>
void tBinaryObjectWriter::writeText(tText const& value, i32& status) {
  if (status < 0) return;
  if (value.size() > kMostLength) {
    status = kStatusStreamTooLong;
    return;
  }
  writeNumber(static_cast<u32>(value.size()), status);
  store(value.data(), value.size() * sizeof(value[0]));
}

void tBinaryObjectWriter::store(void const* data, size_t size) {
  storeAt(position, data, size);
  position += size;
}

// What does not fit whole is left out whole.
void tBinaryObjectWriter::storeAt(size_t place, void const* data, size_t size) {
  if (size <= capacity && place <= capacity - size) __builtin_memcpy(bytes + place, data, size);
}

}  // namespace nQELM100
