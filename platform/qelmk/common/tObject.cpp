#include "qelmk/tObject.h"

namespace nQELM100 {

constinit void* const tObject::___classID = const_cast<void**>(&tObject::___classID);

tObject::~tObject() = default;

tObject& tObject::operator=(tObject const&) = default;

void* tObject::___CPPKRLCast(tObject* object, void* const* const classID) {
  return classID == &___classID ? object : nullptr;
}

void const* tObject::___CPPKRLCast(tObject const* object, void* const* const classID) {
  return ___CPPKRLCast(const_cast<tObject*>(object), classID);
}

}  // namespace nQELM100
