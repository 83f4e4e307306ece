#include "tItemStream.h"

#include "qelmk/dynamicCast.h"
#include "qelmk/iExternalizable.h"

using nQELM100::dynamicCast;
using nQELM100::iExternalizable;
using nQELM100::tClass;
using nQELM100::tObject;

namespace {

constinit tItemStream stream;

}  // namespace

tItemStream& cleanStream() {
  stream.clear();
  return stream;
}

void tItemStream::clear() {
  count = position = classCount = 0;
  end = kCapacity;
}

void tItemStream::put(tItem item) {
  if (count != kCapacity) items[count++] = item;
}

void tItemStream::insert(u32 index, tItem item) {
  if (count == kCapacity) return;
  for (u32 i = count++; i > index; --i) items[i] = items[i - 1];
  items[index] = item;
}

void tItemStream::erase(u32 index) {
  --count;
  for (u32 i = index; i < count; ++i) items[i] = items[i + 1];
}

void tItemStream::write(tKind kind, u32 value, i32& status) {
  if (status < 0) return;
  if (count >= end) {
    status = kStatusEnded;
    return;
  }
  put({kind, value});
}

void tItemStream::writeCharacter(char value, i32& status) {
  write(kCharacter, static_cast<u8>(value), status);
}

void tItemStream::writeI32(i32 value, i32& status) {
  write(kI32, static_cast<u32>(value), status);
}

void tItemStream::writeU32(u32 value, i32& status) {
  write(kU32, value, status);
}

void tItemStream::writeHalves(tKind kind, u64 value, i32& status) {
  write(kind, static_cast<u32>(value), status);
  write(kind, static_cast<u32>(value >> 32), status);
}

void tItemStream::writeI64(i64 value, i32& status) {
  writeHalves(kI64, static_cast<u64>(value), status);
}

void tItemStream::writeU64(u64 value, i32& status) {
  writeHalves(kU64, value, status);
}

template <class tText>
void tItemStream::writeText(tKind kind, tText const& value, i32& status) {
  write(kind, static_cast<u32>(value.size()), status);
  for (size_t index = 0; index < value.size(); ++index) {
    write(kCharacter, static_cast<u16>(value[index]), status);
  }
}

void tItemStream::writeString(_STL::string const& value, i32& status) {
  writeText(kString, value, status);
}

void tItemStream::writeWideString(_STL::wstring const& value, i32& status) {
  writeText(kWideString, value, status);
}

void tItemStream::writeObject(tObject const* object, i32& status) {
  if (status < 0) return;
  if (object == nullptr) return write(kNullObject, 0, status);
  write(kObject, findClass(object->getClass(status)), status);
  auto const* const content = dynamicCast<iExternalizable>(object);
  if (content != nullptr) content->writeExternal(*this, status);
}

bool tItemStream::read(tKind kind, u32& value, i32& status) {
  if (status < 0) return false;
  if (position >= count || position >= end) {
    status = kStatusEnded;
  } else if (items[position].kind != kind) {
    status = kStatusWrongKind;
  } else {
    value = items[position++].value;
  }
  return status >= 0;
}

void tItemStream::readCharacter(char& value, i32& status) {
  u32 item = 0;
  if (read(kCharacter, item, status)) value = static_cast<char>(item);
}

void tItemStream::readI32(i32& value, i32& status) {
  u32 item = 0;
  if (read(kI32, item, status)) value = static_cast<i32>(item);
}

void tItemStream::readU32(u32& value, i32& status) {
  read(kU32, value, status);
}

bool tItemStream::readHalves(tKind kind, u64& value, i32& status) {
  u32 low = 0;
  u32 high = 0;
  if (!read(kind, low, status) || !read(kind, high, status)) return false;
  value = static_cast<u64>(high) << 32 | low;
  return true;
}

void tItemStream::readI64(i64& value, i32& status) {
  u64 bits = 0;
  if (readHalves(kI64, bits, status)) value = static_cast<i64>(bits);
}

void tItemStream::readU64(u64& value, i32& status) {
  readHalves(kU64, value, status);
}

template <class tText>
void tItemStream::readText(tKind kind, tText& value, i32& status) {
  u32 length = 0;
  if (!read(kind, length, status)) return;
  value.clear();
  for (u32 character = 0; length != 0 && read(kCharacter, character, status); --length) {
    if (!value.push_back(static_cast<typename tText::value_type>(character))) {
      status = kStatusOutOfMemory;
    }
  }
}

void tItemStream::readString(_STL::string& value, i32& status) {
  readText(kString, value, status);
}

void tItemStream::readWideString(_STL::wstring& value, i32& status) {
  readText(kWideString, value, status);
}

tObject* tItemStream::readObject(i32& status) {
  if (position < count && position < end && items[position].kind == kNullObject) {
    if (status >= 0) ++position;
    return nullptr;
  }
  u32 index = 0;
  if (!read(kObject, index, status)) return nullptr;
  tObject* const object = classes[index].newInstance(status);
  auto* const content = dynamicCast<iExternalizable>(object);
  if (content != nullptr) content->readExternal(*this, status);
  if (status >= 0) return object;
  classes[index].deleteInstance(object, status);
  return nullptr;
}

u64 tItemStream::getMostItems() const {
  u32 const last = count < end ? count : end;
  return position < last ? last - position : 0;
}

u32 tItemStream::findClass(tClass const& wanted) {
  for (u32 i = 0; i < classCount; ++i) {
    if (classes[i] == wanted) return i;
  }
  classes[classCount] = wanted;
  return classCount++;
}
