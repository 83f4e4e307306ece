#pragma once

// What the framework knows about one class.

#include "compiler/compiler.h"
#include "compiler/types.h"
#include "qelmk/api.h"
#include "qelmk/tObject.h"

namespace nQELM100 {

// The record of a class: one constant-initialised static object a class, made by the macros of
// "qelmk/classMacros.h". It outlives every tClass that refers to it, and holds its own place in the
// registry of classes, so that registering takes no memory.
class QELM_API tClassImplementation {
 public:
  // Makes a default-constructed instance in the module's memory; null when that is exhausted.
  using tFactory = tObject* (*)();

  // Destroys an instance and gives its memory back.
  using tDeleter = void (*)(tObject* object);

  // `name` is the class name with its namespaces, text that lives as long as the module. A class
  // without instances of its own has null for both functions.
  constexpr tClassImplementation(char const* className, tFactory factoryFunction,
                                 tDeleter deleterFunction)
      : name(className),
        factory(factoryFunction),
        deleter(deleterFunction),
        nameLength(lengthOf(className)) {}

  tClassImplementation(tClassImplementation const&) = delete;
  tClassImplementation& operator=(tClassImplementation const&) = delete;

  constexpr char const* getName() const { return name; }

  // Bytes of the name without its terminator; 0 for a null name.
  constexpr u32 getNameLength() const { return nameLength; }

  // Whether tClass::forName finds this class. Any IRQL; any thread.
  bool isRegistered() const { return nCompiler::loadAcquire(registrationCount) != 0; }

  constexpr tFactory getFactory() const { return factory; }
  constexpr tDeleter getDeleter() const { return deleter; }

 private:
  friend class tClassRegistry;

  // With its undefined-behaviour sanitizer g++ takes no comparison of a static member's address
  // with null for a constant. A constant record without a name does not compile.
  static constexpr u32 lengthOf(char const* text) {
    if (!nCompiler::isMakingConstant() && text == nullptr) return 0;
    u32 length = 0;
    while (text[length] != 0) ++length;
    return length;
  }

  char const* name;
  tFactory factory;
  tDeleter deleter;

  // Kept by the registry under its lock; the count is read without it.
  tClassImplementation* children[2] = {};
  u64 nameHash = 0;
  u32 registrationCount = 0;

  u32 nameLength;
};

// Factory and deleter of an ordinary class.
template <class T>
tObject* createObject() {
  return new T;
}
inline void destroyObject(tObject* object) {
  delete object;
}

}  // namespace nQELM100
