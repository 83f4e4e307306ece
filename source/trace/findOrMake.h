#pragma once

#include "trace/mayEnd.h"

namespace nOXDIAG100 {

// The object that `place` leads to, made by the first who asks. Of several who ask first at once,
// one makes the object and the others take it. Null when memory is exhausted.
template <class T>
T* findOrMake(T*& place) {
  T* known = __atomic_load_n(&place, __ATOMIC_ACQUIRE);
  if (known != nullptr) return known;
  T* const made = new T;
  if (made == nullptr) return nullptr;
  if (__atomic_compare_exchange_n(&place, &known, made, false, __ATOMIC_ACQ_REL,
                                  __ATOMIC_ACQUIRE)) {
    return made;
  }
  delete made;
  return known;
}

// Destroys the destination that `place` leads to, if there is one and nobody is within it.
template <class T>
void destroyAtEnd(T*& place) {
  if (place == nullptr || !mayEnd(*place)) return;
  delete place;
  place = nullptr;
}

}  // namespace nOXDIAG100
