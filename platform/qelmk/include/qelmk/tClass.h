#pragma once

// A class as a value: its name, and the way to make and destroy its objects.

#include "compiler/types.h"
#include "qelmk/api.h"
#include "qelmk/tClassImplementation.h"
#include "qelmk/tObject.h"

namespace nQELM100 {

// Refers to the record of a class, or to none. Copied freely; any IRQL except where said.
//
//     i32 status = 0;
//     tClass const aClass = object.getClass(status);
//     tObject* another = aClass.newInstance(status);
//     ...
//     aClass.deleteInstance(another, status);
class QELM_API tClass {
 public:
  // Stands for no class.
  constexpr tClass() = default;

  explicit constexpr tClass(tClassImplementation const& record) : implementation(&record) {}

  // The registered class of this name; one that stands for no class, and kStatusClassUnknown in
  // `status`, when there is none, or when `name` is null. A negative `status` on entry is kept and
  // nothing is looked for. IRQL <= APC_LEVEL; any thread.
  static tClass forName(char const* name, i32& status);

  // The same for a name of `length` characters without terminator. No class has a NUL in its name.
  static tClass forName(char const* name, size_t length, i32& status);

  constexpr bool isValid() const { return implementation != nullptr; }

  // Null when this stands for no class.
  constexpr tClassImplementation const* getRecord() const { return implementation; }

  // The registered name with its namespaces, such as "nOXDIAG100::tGUIDReportable"; empty when this
  // stands for no class.
  char const* getName() const;

  // A default-constructed object, owned by the caller, who destroys it with deleteInstance. Null
  // with the reason in `status`: kStatusOutOfMemory, kStatusClassAbstract, kStatusClassInvalid. A
  // negative `status` on entry is kept and nothing is made. IRQL <= DISPATCH_LEVEL.
  tObject* newInstance(i32& status) const;

  // Destroys an object of this class; null is fine. Works with an error in `status`, which is
  // kept. An object of another class is not destroyed: `status` gets kStatusClassMismatch
  // (kStatusClassInvalid when this stands for no class), unless it holds an error already.
  // IRQL <= DISPATCH_LEVEL.
  void deleteInstance(tObject* object, i32& status) const;

  // Two values are equal when they refer to the same record; all that stand for no class are equal.
  constexpr bool operator==(tClass const& other) const = default;

 private:
  tClassImplementation const* implementation = nullptr;
};

}  // namespace nQELM100
