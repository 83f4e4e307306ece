#include "tBlindReader.h"

#include "qelmk/classRegistry.h"
#include "qelmk/dynamicCast.h"
#include "qelmk/iExternalizable.h"
#include "qelmk/ownedObjects.h"
#include "qelmk/tClass.h"

using nQELM100::tBinaryObjectReader;
using nQELM100::tObject;

template <class tValue>
void tBlindReader::readItem(void (tBinaryObjectReader::*read)(tValue&, i32&), tValue& value,
                            i32& status) {
  atItem();
  (reader.*read)(value, status);
  atItem();
}

void tBlindReader::readCharacter(char& value, i32& status) {
  readItem(&tBinaryObjectReader::readCharacter, value, status);
}

void tBlindReader::readI32(i32& value, i32& status) {
  readItem(&tBinaryObjectReader::readI32, value, status);
}

void tBlindReader::readU32(u32& value, i32& status) {
  readItem(&tBinaryObjectReader::readU32, value, status);
}

void tBlindReader::readI64(i64& value, i32& status) {
  readItem(&tBinaryObjectReader::readI64, value, status);
}

void tBlindReader::readU64(u64& value, i32& status) {
  readItem(&tBinaryObjectReader::readU64, value, status);
}

void tBlindReader::readString(_STL::string& value, i32& status) {
  readItem(&tBinaryObjectReader::readString, value, status);
}

void tBlindReader::readWideString(_STL::wstring& value, i32& status) {
  readItem(&tBinaryObjectReader::readWideString, value, status);
}

tObject* tBlindReader::readObject(i32& status) {
  u32 const nameLength = readNameLength(status);
  if (status < 0 || nameLength == 0) return nullptr;
  if (depth == nQELM100::kMostObjectDepth) {
    status = nQELM100::kStatusStreamTooDeep;
    return nullptr;
  }
  tObject* const object = makeObject(nameLength, status);
  if (object == nullptr) return nullptr;
  ++depth;
  auto* const content = nQELM100::dynamicCast<nQELM100::iExternalizable>(object);
  if (content != nullptr) content->readExternal(*this, status);
  --depth;
  atItem();
  if (status >= 0) return object;
  nQELM100::destroyThroughClass(object);
  return nullptr;
}

u32 tBlindReader::readNameLength(i32& status) {
  char low = 0;
  char high = 0;
  readCharacter(low, status);
  readCharacter(high, status);
  return static_cast<u8>(low) | u32{static_cast<u8>(high)} << 8;
}

tObject* tBlindReader::makeObject(u32 nameLength, i32& status) {
  char name[nQELM100::kMostClassNameLength + 1] = {};
  if (nameLength > nQELM100::kMostClassNameLength) status = nQELM100::kStatusStreamMalformed;
  for (u32 i = 0; i < nameLength && status >= 0; ++i) readCharacter(name[i], status);
  u32 contentLength = 0;
  readU32(contentLength, status);
  return nQELM100::tClass::forName(name, status).newInstance(status);
}
