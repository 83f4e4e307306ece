#pragma once

// Objects of the framework that somebody owns: made, taken over and destroyed through their class.

#include "compiler/types.h"
#include "qelmk/dynamicCast.h"
#include "qelmk/mergeStatus.h"
#include "qelmk/statusCodes.h"
#include "qelmk/tClass.h"
#include "qelmk/tClassImplementation.h"

namespace nQELM100 {

// Through its class; null does nothing. IRQL as for tClass::deleteInstance.
inline void destroyThroughClass(tObject* object) {
  if (object == nullptr) return;
  i32 status = 0;
  tClassImplementation const* const record = object->getClass(status).getRecord();
  if (record != nullptr && record->getDeleter() != nullptr) record->getDeleter()(object);
}

// Takes `object` over: the T that it is, or null when it is none or null itself; it is then
// destroyed and `status` becomes kStatusClassMismatch, unless it holds an error already.
template <class T>
T* adoptObject(tObject* object, i32& status) {
  T* const adopted = dynamicCast<T>(object);
  if (adopted != nullptr) return adopted;
  destroyThroughClass(object);
  mergeStatus(status, kStatusClassMismatch);
  return nullptr;
}

// The beginning of every clone: a T as its class makes it. Exhausted memory is
// kStatusClassMismatch; null at once when `status` is negative on entry.
template <class T>
T* makeObject(i32& status) {
  if (status < 0) return nullptr;
  T* const object = new T;
  if (object == nullptr) status = kStatusClassMismatch;
  return object;
}

}  // namespace nQELM100
