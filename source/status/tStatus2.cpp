#include "oxdiagk/tStatus2.h"

#include "oxdiagk/iStatus2Description.h"
#include "oxdiagk/tStatus2ModuleList.h"
#include "qelmk/iObjectReader.h"
#include "qelmk/iObjectWriter.h"
#include "qelmk/mergeStatus.h"
#include "status/tStatus2Implementation.h"
#include "status/tStatusText.h"
#include "vexk/callStack.h"

namespace nOXDIAG100 {
namespace {

// Stands in the file name of a detail that was made for a code without origin.
constexpr char kPlainCodeText[] =
    "Status set in code using legacy interface, stack trace reflects where the code exited the "
    "interface";
static_assert(sizeof kPlainCodeText - 1 == 99 &&
              sizeof kPlainCodeText - 1 <= tStatus2::kMaxFileNameLength);

// The fixed part of the externalized form in bytes: code and flag.
constexpr u32 kFixedLength = 8;

// Writes how much of the form stands in front of the detail, and the fixed part.
void writeHead(nQELM100::iObjectWriter& writer, u32 length, i32 code, bool hasDetail, i32& status) {
  writer.writeU32(length, status);
  writer.writeI32(code, status);
  writer.writeU32(hasDetail ? 1 : 0, status);
}

void appendDetail(tStatusText& text, tStatus2 const& status) {
  iStatus2Description const* const description = status.getDescription();
  text.append("\n\tComponent Name = ").append(status.getComponentName());
  text.append("\n\tFile Name = ").append(status.getFileName());
  text.append("\n\tLine Number = ").appendDecimal(status.getLineNumber());
  text.append("\n\tAddress of Status Description = ");
  text.appendAddress(reinterpret_cast<u64>(description));
  text.append("\n\tStack Trace =");
  u64 addresses[tStatus2::kStackTraceLength];
  status.getStackTrace(addresses);
  for (u64 address : addresses) text.append("\n\t\t").appendAddress(address);
  if (description == nullptr || text.isFull()) return;
  text.append("\n\t");
  description->toString(text.getRest(), text.getRestSize());
}

// Reads the form of a detail that found no room, so that what follows it in the stream is found.
// That a description finds no room either is no failure besides.
void passDetail(nQELM100::iObjectReader& reader, i32& status) {
  tStatus2Implementation passed(0, nullptr, nullptr, 0, nullptr);
  i32 descriptionStatus = 0;
  i32 formStatus = 0;
  passed.readForm(reader, descriptionStatus, formStatus);
  bool const isPassed = descriptionStatus == kStatusOutOfMemory && reader.isPastFailedObject();
  if (!isPassed) nQELM100::mergeStatus(status, descriptionStatus);
  nQELM100::mergeStatus(status, formStatus);
}

}  // namespace

u32 tStatus2::setDescription(iStatus2Description const& description) {
  if (code == 0) return 0;
  if (implementation != nullptr) {
    if (implementation->getDescription() != nullptr) return 0;
    return implementation->setDescription(description);
  }
  _allocateImplementationObject(code, "", kPlainCodeText, 0, &description);
  return getDescription() != nullptr ? 1 : 0;
}

char const* tStatus2::getComponentName() const {
  return implementation != nullptr ? implementation->getComponentName() : "";
}

char const* tStatus2::getFileName() const {
  return implementation != nullptr ? implementation->getFileName() : "";
}

u32 tStatus2::getLineNumber() const {
  return implementation != nullptr ? implementation->getLineNumber() : 0;
}

iStatus2Description const* tStatus2::getDescription() const {
  return implementation != nullptr ? implementation->getDescription() : nullptr;
}

void tStatus2::getStackTrace(u64 (&addresses)[kStackTraceLength]) const {
  if (implementation != nullptr) {
    implementation->getStackTrace(addresses);
  } else {
    for (u64& address : addresses) address = 0;
  }
}

void tStatus2::toString(char* buffer, u32 size) const {
  if (buffer == nullptr || size == 0) return;
  tStatusText text(buffer, size);
  text.append("\ntStatus2 Contents:\n\tError Code = ").appendDecimal(code);
  if (implementation == nullptr) {
    text.append("\n");
    return;
  }
  appendDetail(text, *this);
  // A description that used its room to the last byte.
  buffer[size - 1] = '\0';
}

void tStatus2::writeExternal(nQELM100::iObjectWriter& writer, i32& status) const {
  if (status < 0) return;
  writeHead(writer, kFixedLength, code, implementation != nullptr, status);
  if (implementation != nullptr) implementation->writeExternal(writer, status);
}

void tStatus2::writeExternal(nQELM100::iObjectWriter& writer, tStatus2ModuleList const& modules,
                             i32& status) const {
  if (status < 0) return;
  u32 const length = kFixedLength + modules.getWrittenSize();
  writeHead(writer, length, code, implementation != nullptr, status);
  modules.writeExternal(writer, status);
  if (implementation != nullptr) implementation->writeExternal(writer, status);
}

void tStatus2::readExternal(nQELM100::iObjectReader& reader, i32& status) {
  if (status < 0) return;
  releaseDetail();
  u32 length = 0;
  u32 hasDetail = 0;
  reader.readU32(length, status);
  reader.readI32(code, status);
  reader.readU32(hasDetail, status);
  char skipped = '\0';
  for (; length > kFixedLength && status >= 0; --length) reader.readCharacter(skipped, status);
  if (hasDetail == 0 || status < 0) return;
  if (_allocateImplementationObject(code, "", "", 0, nullptr) == 0)
    return passDetail(reader, status);
  implementation->readExternal(reader, status);
}

// The call stack is taken here and not further in, so that it begins close to the caller.
u32 tStatus2::_allocateImplementationObject(i32 newCode, char const* component, char const* file,
                                            u32 line, iStatus2Description const* description) {
  if (makeDetail(newCode, component, file, line, description) == 0) return 0;
  _vexGetCallStack(kStackTraceLength, 0, implementation->getStackTraceAddress());
  return 1;
}

u32 tStatus2::_allocateImplementationObjectWithoutStackTrace(
    i32 newCode, char const* component, char const* file, u32 line,
    iStatus2Description const* description) {
  return makeDetail(newCode, component, file, line, description);
}

u32 tStatus2::makeDetail(i32 newCode, char const* component, char const* file, u32 line,
                         iStatus2Description const* description) {
  // A description of the present detail has to outlive that until it is cloned.
  bool const isOwn = description != nullptr && description == getDescription();
  tStatus2 const keeper = isOwn ? *this : tStatus2();
  releaseDetail();
  code = newCode;
  i32 status = 0;
  implementation = new (status) tStatus2Implementation(newCode, component, file, line, description);
  if (implementation != nullptr) return 1;
  if (code >= 0) code = kStatusOutOfMemory;
  return 0;
}

u32 tStatus2::_assign(tStatus2 const& other) {
  // In this order a status may be assigned to itself.
  tStatus2Implementation* const shared = other.implementation;
  if (shared != nullptr) shared->addReference();
  releaseDetail();
  implementation = shared;
  code = other.code;
  return 1;
}

void tStatus2::addReference() {
  implementation->addReference();
}

void tStatus2::releaseDetail() {
  if (implementation == nullptr) return;
  tStatus2Implementation* const released = implementation;
  implementation = nullptr;
  released->release();
}

}  // namespace nOXDIAG100
