#pragma once

// The cast of the object framework, which needs no type information of the compiler.

#include "qelmk/tObject.h"

namespace nQELM100 {

// `object` seen as a T, or null when it is none, or null itself. T is any class with a
// `___classID`. Takes as long as the object has base classes; any IRQL, allocates nothing.
//
//     iCloneable const* cloneable = dynamicCast<iCloneable>(&object);
template <class T>
T* dynamicCast(tObject* object) {
  if (object == nullptr) return nullptr;
  return static_cast<T*>(object->___CPPKRLDynamicCast(&T::___classID));
}

template <class T>
T const* dynamicCast(tObject const* object) {
  if (object == nullptr) return nullptr;
  return static_cast<T const*>(object->___CPPKRLDynamicCast(&T::___classID));
}

}  // namespace nQELM100
