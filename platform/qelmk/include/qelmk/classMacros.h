#pragma once

// The convention by which a class joins the object framework, told once.
//
//     // tThing.h
//     class THING_API tThing : public virtual nQELM100::iCloneable {
//       QELM_DECLARE_CLASS(tThing, nQELM100::iCloneable)
//      public:
//       nQELM100::iCloneable* clone(i32& status) const override;
//     };
//
//     // tThing.cpp
//     QELM_DEFINE_CLASS(nTHING::tThing, "nTHING::tThing")
//
// The declaring macro stands first in the class and leaves access at private. It takes the class
// and its direct bases in the order in which the class declares them, if it has any. The defining
// macro stands at file scope, in one source, and takes the class and its registered name.
//
// Members that they make:
//   ___classID                 its address is the identity of the class
//   ___myClassImplementation   the record of the class
//   staticGetClass(status)     the class as a value; leaves `status` alone
//   ___registerClass(status)   lets tClass::forName find the class, and
//   ___unregisterClass()       ends that; see "qelmk/classRegistry.h". A module registers its
//   classes
//                              when it starts and unregisters them when it stops
//   ___CPPKRLCast(object, id)  protected: `object` seen as the class with that identity; first the
//                              class itself, then each base's cast in order of declaration
// and, for a class that has instances of its own, the four operations of tObject. Such a class has
// an accessible default constructor.

#include "qelmk/classRegistry.h"
#include "qelmk/tClass.h"
#include "qelmk/tClassImplementation.h"
#include "qelmk/tObject.h"

// For an abstract class: identity, name and cast.
#define QELM_DECLARE_INTERFACE(className, ...)                                                 \
 public:                                                                                       \
  static void* const ___classID;                                                               \
  static nQELM100::tClass staticGetClass(i32& status);                                         \
  static void ___registerClass(i32& status);                                                   \
  static void ___unregisterClass();                                                            \
                                                                                               \
 protected:                                                                                    \
  static nQELM100::tClassImplementation ___myClassImplementation;                              \
  static void* ___CPPKRLCast(className* object, void* const* const classID) {                  \
    if (classID == &___classID) return object;                                                 \
    return ___CPPKRLCastToBases<__VA_ARGS__>(object, classID);                                 \
  }                                                                                            \
  static void const* ___CPPKRLCast(className const* object, void* const* const classID) {      \
    return ___CPPKRLCast(const_cast<className*>(object), classID);                             \
  }                                                                                            \
                                                                                               \
 private:                                                                                      \
  template <class... Bases>                                                                    \
  static void* ___CPPKRLCastToBases([[maybe_unused]] className* object,                        \
                                    [[maybe_unused]] void* const* const classID) {             \
    void* found = nullptr;                                                                     \
    (void)(... ||                                                                              \
           ((found = Bases::___CPPKRLCast(static_cast<Bases*>(object), classID)) != nullptr)); \
    return found;                                                                              \
  }

// For a class that has instances of its own.
#define QELM_DECLARE_CLASS(className, ...)                                      \
  QELM_DECLARE_INTERFACE(className, __VA_ARGS__)                                \
                                                                                \
 public:                                                                        \
  void const* ___CPPKRLDynamicCast(void* const* const classID) const override { \
    return ___CPPKRLCast(this, classID);                                        \
  }                                                                             \
  void* ___CPPKRLDynamicCast(void* const* const classID) override {             \
    return ___CPPKRLCast(this, classID);                                        \
  }                                                                             \
  nQELM100::tClass getClass(i32& status) const override {                       \
    return staticGetClass(status);                                              \
  }                                                                             \
  nQELM100::tObject& ___QELMGetTObject() override {                             \
    return *this;                                                               \
  }                                                                             \
                                                                                \
 private:

// The identity points to itself: no linker takes two of them for one. `templateHead` is empty, or
// the head of the template that the class is an instance of.
#define QELM_DEFINE_IDENTITY(templateHead, className, registeredName, factory, deleter)      \
  templateHead constinit void* const className::___classID =                                 \
      const_cast<void**>(&className::___classID);                                            \
  templateHead constinit nQELM100::tClassImplementation className::___myClassImplementation( \
      registeredName, factory, deleter);                                                     \
  templateHead nQELM100::tClass className::staticGetClass(i32&) {                            \
    return nQELM100::tClass(___myClassImplementation);                                       \
  }                                                                                          \
  templateHead void className::___registerClass(i32& status) {                               \
    nQELM100::registerClass(___myClassImplementation, status);                               \
  }                                                                                          \
  templateHead void className::___unregisterClass() {                                        \
    nQELM100::unregisterClass(___myClassImplementation);                                     \
  }

#define QELM_DEFINE_INTERFACE(className, registeredName) \
  QELM_DEFINE_IDENTITY(, className, registeredName, nullptr, nullptr)

#define QELM_DEFINE_CLASS(className, registeredName)                                    \
  QELM_DEFINE_IDENTITY(, className, registeredName, &nQELM100::createObject<className>, \
                       &nQELM100::destroyObject)

// For a template with one type parameter, called T in `registeredName`. Stands behind the template
// in its header, at the scope of the template; every instance is a class of its own.
//
//     QELM_DEFINE_CLASS_TEMPLATE(tListOf, tNameOf<T>::kName)
#define QELM_DEFINE_CLASS_TEMPLATE(templateName, registeredName)            \
  QELM_DEFINE_IDENTITY(template <class T>, templateName<T>, registeredName, \
                       &nQELM100::createObject<templateName<T>>, &nQELM100::destroyObject)
