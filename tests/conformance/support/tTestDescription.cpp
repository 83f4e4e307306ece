#include "tTestDescription.h"

#include "qelmk/dynamicCast.h"
#include "qelmk/iObjectReader.h"
#include "qelmk/iObjectWriter.h"
#include "qelmk/statusCodes.h"

using nOXDIAG100::iStatus2Description;
using nQELM100::dynamicCast;
using nQELM100::iCloneable;
using nQELM100::iObjectReader;
using nQELM100::iObjectWriter;
using nQELM100::tObject;

QELM_DEFINE_CLASS(tTestDescription, "tTestDescription")
QELM_DEFINE_CLASS(tTalkingDescription, "tTalkingDescription")
QELM_DEFINE_CLASS(tForeignObject, "tForeignObject")

constinit i32 tTestDescription::living = 0;
constinit tTestDescription::tCloning tTestDescription::cloning = tTestDescription::kCloning;
constinit i32 tTestDescription::lastCloneStatus = 0;
constinit u32 tTalkingDescription::lastSize = 0;
constinit bool tTalkingDescription::isCareless = false;
constinit i32 tForeignObject::living = 0;

tTestDescription::tTestDescription(tTestDescription const& other)
    : tObject(other), iStatus2Description(other), number(other.number) {
  ++living;
}

iCloneable* tTestDescription::clone(i32& status) const {
  lastCloneStatus = status;
  switch (cloning) {
    case kFailing:
      status = kStatusCloneFailed;
      return nullptr;
    case kFailingSilently:
      return nullptr;
    case kYieldingForeign:
      return new tForeignObject;
    case kYieldingAndWarns:
      status = nQELM100::kStatusNoListFollows;
      break;
    default:
      break;
  }
  auto* const copy = new tTestDescription(number);
  if (copy == nullptr && status >= 0) status = nQELM100::kStatusClassMismatch;
  return copy;
}

void tTestDescription::writeExternal(iObjectWriter& writer, i32& status) const {
  writer.writeI32(number, status);
}

void tTestDescription::readExternal(iObjectReader& reader, i32& status) {
  reader.readI32(number, status);
}

iCloneable* tTalkingDescription::clone(i32& status) const {
  auto* const copy = new tTalkingDescription(number);
  if (copy == nullptr && status >= 0) status = nQELM100::kStatusClassMismatch;
  return copy;
}

void tTalkingDescription::toString(char* buffer, u32 size) const {
  lastSize = size;
  u32 const room = isCareless ? size : size - 1;
  u32 const length = static_cast<u32>(number) < room ? static_cast<u32>(number) : room;
  for (u32 i = 0; i < length; ++i) buffer[i] = static_cast<char>('a' + i % 26);
  if (length < size) buffer[length] = '\0';
}

iCloneable* tForeignObject::clone(i32& status) const {
  return status < 0 ? nullptr : new tForeignObject;
}

i32 numberOf(iStatus2Description const* description) {
  auto const* const test = dynamicCast<tTestDescription>(description);
  return test != nullptr ? test->number : -1;
}
