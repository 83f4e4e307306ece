#include "qelmk/tClass.h"

#include "qelmk/mergeStatus.h"
#include "qelmk/statusCodes.h"
#include "tClassRegistry.h"
#include "vexk/memory.h"

namespace nQELM100 {

tClass tClass::forName(char const* name, i32& status) {
  return forName(name, name == nullptr ? 0 : __builtin_strlen(name), status);
}

tClass tClass::forName(char const* name, size_t length, i32& status) {
  if (status < 0) return tClass();
  tClassImplementation const* const record = qelmkClasses.find(name, length);
  if (record == nullptr) {
    status = kStatusClassUnknown;
    return tClass();
  }
  return tClass(*record);
}

char const* tClass::getName() const {
  return isValid() ? implementation->getName() : "";
}

tObject* tClass::newInstance(i32& status) const {
  if (status < 0) return nullptr;
  if (!isValid()) {
    status = kStatusClassInvalid;
    return nullptr;
  }
  tClassImplementation::tFactory const factory = implementation->getFactory();
  if (factory == nullptr) {
    status = kStatusClassAbstract;
    return nullptr;
  }
  tObject* object = factory();
  if (object == nullptr) status = kStatusOutOfMemory;
  return object;
}

void tClass::deleteInstance(tObject* object, i32& status) const {
  if (object == nullptr) return;
  if (!isValid()) return mergeStatus(status, kStatusClassInvalid);
  i32 classStatus = 0;
  tClassImplementation::tDeleter const deleter = implementation->getDeleter();
  if (deleter == nullptr || object->getClass(classStatus) != *this) {
    return mergeStatus(status, kStatusClassMismatch);
  }
  deleter(object);
}

}  // namespace nQELM100
