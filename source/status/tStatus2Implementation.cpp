#include "status/tStatus2Implementation.h"

#include "qelmk/iObjectReader.h"
#include "qelmk/iObjectWriter.h"
#include "qelmk/mergeStatus.h"
#include "status/ownedDescription.h"
#include "status/statusMemory.h"

namespace nOXDIAG100 {
namespace {

// The fixed part of the externalized form in bytes: names, line, low halves of the addresses, code,
// description flag and marker. Forms shorter than that were written without the marker.
constexpr u32 kFixedLength = (tStatus2::kMaxComponentLength + 1) +
                             (tStatus2::kMaxFileNameLength + 1) + 4 +
                             4 * tStatus2::kStackTraceLength + 4 + 4 + 4;
static_assert(kFixedLength == 181);

constexpr u32 kHighHalvesFollow = 1;

// The field is all zero before.
void copyTail(char* field, u32 size, char const* text) {
  if (text == nullptr) return;
  size_t const length = __builtin_strlen(text);
  size_t const kept = length < size ? length : size - 1;
  __builtin_memcpy(field, text + (length - kept), kept);
}

void readField(nQELM100::iObjectReader& reader, char* field, u32 size, i32& status) {
  __builtin_memset(field, 0, size);
  reader.readCharacters(field, size, status);
  field[size - 1] = '\0';
}

u32 readNumber(nQELM100::iObjectReader& reader, i32& status) {
  u32 value = 0;
  reader.readU32(value, status);
  return value;
}

void skipCharacters(nQELM100::iObjectReader& reader, u32 count, i32& status) {
  char skipped = '\0';
  for (; count != 0 && status >= 0; --count) reader.readCharacter(skipped, status);
}

}  // namespace

void* tStatus2Implementation::operator new(size_t size, i32& status) noexcept {
  return takeStatusMemory(size, status);
}

void tStatus2Implementation::operator delete(void* block) noexcept {
  giveStatusMemoryBack(block);
}

tStatus2Implementation::tStatus2Implementation(i32 statusCode, char const* component,
                                               char const* file, u32 lineNumber,
                                               iStatus2Description const* statusDescription)
    : line(lineNumber), code(statusCode) {
  copyTail(componentName, kComponentSize, component);
  copyTail(fileName, kFileNameSize, file);
  if (statusDescription != nullptr) setDescription(*statusDescription);
}

// offsetof of a class with virtual operations is up to the compiler; all of ours have it.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
void tStatus2Implementation::checkLayout() {
  static_assert(sizeof(tStatus2Implementation) == 240);
  static_assert(offsetof(tStatus2Implementation, referenceCount) == 8);
  static_assert(offsetof(tStatus2Implementation, componentName) == 12);
  static_assert(offsetof(tStatus2Implementation, fileName) == 36);
  static_assert(offsetof(tStatus2Implementation, line) == 140);
  static_assert(offsetof(tStatus2Implementation, stackTrace) == 144);
  static_assert(offsetof(tStatus2Implementation, description) == 224);
  static_assert(offsetof(tStatus2Implementation, code) == 232);
}
#pragma GCC diagnostic pop

tStatus2Implementation::~tStatus2Implementation() {
  destroyDescription(description);
}

void tStatus2Implementation::addReference() {
  ++referenceCount;
}

void tStatus2Implementation::release() {
  if (--referenceCount == 0) delete this;
}

char const* tStatus2Implementation::getComponentName() const {
  return componentName;
}

char const* tStatus2Implementation::getFileName() const {
  return fileName;
}

u32 tStatus2Implementation::getLineNumber() const {
  return line;
}

u64* tStatus2Implementation::getStackTraceAddress() {
  return stackTrace;
}

iStatus2Description const* tStatus2Implementation::getDescription() const {
  return description;
}

u32 tStatus2Implementation::setDescription(iStatus2Description const& newDescription) {
  i32 status = 0;
  iStatus2Description* const clone = cloneDescription(newDescription, status);
  if (clone == nullptr) return 0;
  destroyDescription(description);
  description = clone;
  return 1;
}

i32 tStatus2Implementation::getCode() const {
  return code;
}

void tStatus2Implementation::writeExternal(nQELM100::iObjectWriter& writer, i32& status) const {
  if (status < 0) return;
  writer.writeU32(kFixedLength, status);
  writer.writeCharacters(componentName, kComponentSize, status);
  writer.writeCharacters(fileName, kFileNameSize, status);
  writer.writeU32(line, status);
  for (u64 address : stackTrace) writer.writeU32(static_cast<u32>(address), status);
  writer.writeI32(code, status);
  writer.writeU32(description != nullptr ? 1 : 0, status);
  writer.writeU32(kHighHalvesFollow, status);
  if (description != nullptr) writer.writeObject(description, status);
  for (u64 address : stackTrace) writer.writeU32(static_cast<u32>(address >> 32), status);
}

void tStatus2Implementation::readExternal(nQELM100::iObjectReader& reader, i32& status) {
  if (status < 0) return;
  i32 descriptionStatus = 0;
  i32 formStatus = 0;
  readForm(reader, descriptionStatus, formStatus);
  nQELM100::mergeStatus(status, descriptionStatus);
  nQELM100::mergeStatus(status, formStatus);
}

void tStatus2Implementation::readForm(nQELM100::iObjectReader& reader, i32& descriptionStatus,
                                      i32& status) {
  destroyDescription(description);
  description = nullptr;
  u32 hasDescription = 0;
  u32 hasHighHalves = 0;
  readFixedPart(reader, hasDescription, hasHighHalves, status);
  if (status < 0) return;
  if (hasDescription != 0 && !readDescription(reader, descriptionStatus)) return;
  if (hasHighHalves == 0) return;
  for (u64& address : stackTrace) address |= u64{readNumber(reader, status)} << 32;
}

// False when what follows the description cannot be found.
bool tStatus2Implementation::readDescription(nQELM100::iObjectReader& reader, i32& status) {
  nQELM100::tObject* const object = reader.readObject(status);
  bool const isFollowed = status >= 0 || reader.isPastFailedObject();
  description = adoptDescription(object, status);
  return isFollowed;
}

void tStatus2Implementation::readFixedPart(nQELM100::iObjectReader& reader, u32& hasDescription,
                                           u32& hasHighHalves, i32& status) {
  u32 const length = readNumber(reader, status);
  readField(reader, componentName, kComponentSize, status);
  readField(reader, fileName, kFileNameSize, status);
  line = readNumber(reader, status);
  for (u64& address : stackTrace) address = readNumber(reader, status);
  code = 0;
  reader.readI32(code, status);
  hasDescription = readNumber(reader, status);
  if (length < kFixedLength) return;
  hasHighHalves = readNumber(reader, status);
  skipCharacters(reader, length - kFixedLength, status);
}

void tStatus2Implementation::getStackTrace(u64* addresses) const {
  __builtin_memcpy(addresses, stackTrace, sizeof stackTrace);
}

}  // namespace nOXDIAG100
