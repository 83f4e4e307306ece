#pragma once

// The root of every class of the object framework.

#include "compiler/types.h"
#include "qelmk/api.h"
#include "vexk/memory.h"

namespace nQELM100 {

class tClass;

// An object that knows its class. A class of the framework derives from tObject, and from the
// interfaces of the framework, as VIRTUAL bases: whatever its shape, it holds one tObject.
//
// Every class that can be the goal of a cast has a static member `___classID`; the ADDRESS of that
// member is the identity of the class, the same in every module. Casts go through
// dynamicCast<T>() of "qelmk/dynamicCast.h", and the members below are written by the macros of
// "qelmk/classMacros.h".
//
// Objects come from the module's memory: `new` yields null when it is exhausted. Objects are not
// locked. IRQL <= DISPATCH_LEVEL unless a class says otherwise.
//
// Order of the virtual operations on Windows, from slot 0: the cast, the const cast, getClass,
// ___QELMGetTObject, the destructor, operator=.
class QELM_API tObject {
 public:
  VEX_MODULE_MEMORY

  static void* const ___classID;

  // This object seen as the class whose identity is at `classID`, or null when it is none of that
  // class. (On Windows a run of overloads takes its slots in reverse order of declaration.)
  virtual void const* ___CPPKRLDynamicCast(void* const* const classID) const = 0;
  virtual void* ___CPPKRLDynamicCast(void* const* const classID) = 0;

  // The class that this object was made as. Leaves `status` alone.
  virtual tClass getClass(i32& status) const = 0;

  // This object as the one tObject in it.
  virtual tObject& ___QELMGetTObject() = 0;

  virtual ~tObject();

  // Assigns the tObject part, which has no content.
  virtual tObject& operator=(tObject const& other);

 protected:
  tObject() = default;
  tObject(tObject const&) = default;

  static void* ___CPPKRLCast(tObject* object, void* const* const classID);
  static void const* ___CPPKRLCast(tObject const* object, void* const* const classID);
};

}  // namespace nQELM100
