#include "qelmk/tClass.h"

#include "qelmk/statusCodes.h"
#include "vexk/memory.h"

namespace nQELM100 {
namespace {

void setFirstError(i32& status, i32 code) {
  if (status >= 0) status = code;
}

}  // namespace

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
  if (!isValid()) return setFirstError(status, kStatusClassInvalid);
  i32 classStatus = 0;
  tClassImplementation::tDeleter const deleter = implementation->getDeleter();
  if (deleter == nullptr || object->getClass(classStatus) != *this) {
    return setFirstError(status, kStatusClassMismatch);
  }
  deleter(object);
}

}  // namespace nQELM100
