#pragma once

#include "config/options/tInquiryText.h"
#include "oxdiagk/tConfigurationLock.h"
#include "vexk/placementNew.h"

namespace nOXDIAG100 {

// A configurable object before and after its life: what configures it does nothing, and an inquiry
// is an empty text.
template <class T>
class tResting final : public T {
 public:
  tResting() : T(tAtRest()) {}

  void configure() override {}
  void configure(char const* /*options*/) override {}
  void configure(int /*argc*/, char** /*argv*/) override {}
  void inquire(char* buffer, unsigned int size, unsigned int* needed) override {
    tInquiryText(buffer, size).finish(needed);
  }
  void pushConfiguration() override {}
  void popConfiguration() override {}
};

// The place of the one object of a class. While there is none, a resting one is there, whose
// destructor has nothing to do. get() may be called at any time, on any thread and at any IRQL; the
// rest is for the thread that builds and destroys the object, while nobody else uses it.
template <class T, class R = tResting<T>>
class tInstancePlace {
 public:
  constexpr tInstancePlace() = default;

  T& get() {
    if (!__atomic_load_n(&isFilled, __ATOMIC_ACQUIRE)) fill();
    return *__builtin_launder(static_cast<T*>(static_cast<void*>(words)));
  }

  // Where the object is to be built.
  void* take() {
    isFilled = true;
    return words;
  }

  void destroy() {
    get().~T();
    new (words) R;
  }

 private:
  static constexpr u32 kWordCount = sizeof(T) / sizeof(u64);
  static_assert(sizeof(R) == sizeof(T) && alignof(T) == sizeof(u64));

  // No constructor runs when the image is loaded, so the first who asks does this. Several who ask
  // first at once store the same; nobody waits, for one of them may have interrupted another.
  void fill() {
    alignas(T) u64 resting[kWordCount] = {};
    new (resting) R;
    for (u32 index = 0; index < kWordCount; ++index) {
      __atomic_store_n(&words[index], moved(resting[index], resting), __ATOMIC_RELAXED);
    }
    __atomic_store_n(&isFilled, true, __ATOMIC_RELEASE);
  }

  // An address within the object moves with it.
  u64 moved(u64 word, u64 const* from) const {
    u64 const offset = word - reinterpret_cast<u64>(from);
    return offset < sizeof(T) ? reinterpret_cast<u64>(words) + offset : word;
  }

  u64 words[kWordCount] = {};
  bool isFilled = false;
};

}  // namespace nOXDIAG100
