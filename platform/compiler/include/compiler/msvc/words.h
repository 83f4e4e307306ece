#pragma once

// Words that threads share without a lock: numbers, enumerators and pointers of 1, 2, 4 or 8 bytes,
// aligned to their size. A word is read and stored as a whole.
//
// The processor, an x64, reads and writes such a word at once, and puts no read before an earlier
// read and no write before an earlier one. What is left is to hold the compiler to that, which
// _ReadWriteBarrier does, and to keep a read from passing an ordered store, which takes the one
// locked instruction here.

#include <intrin.h>

namespace nCompiler {

// In no order with other words.
template <class T>
T loadRelaxed(T const& word) {
  return *const_cast<T const volatile*>(&word);
}
template <class T>
void storeRelaxed(T& word, T value) {
  *const_cast<T volatile*>(&word) = value;
}

// Who reads what a release stored also sees what was stored before it.
template <class T>
T loadAcquire(T const& word) {
  T const value = *const_cast<T const volatile*>(&word);
  _ReadWriteBarrier();
  return value;
}
template <class T>
void storeRelease(T& word, T value) {
  _ReadWriteBarrier();
  *const_cast<T volatile*>(&word) = value;
}

// In one order with all others that are loaded and stored so.
template <class T>
T loadOrdered(T const& word) {
  _ReadWriteBarrier();
  return nCompiler::loadAcquire(word);
}
template <class T>
void storeOrdered(T& word, T value) {
  static_assert(sizeof(T) == 1 || sizeof(T) == 2 || sizeof(T) == 4 || sizeof(T) == 8);
  void* const place = &word;
  void const* const bits = &value;
  if constexpr (sizeof(T) == 1) {
    _InterlockedExchange8(static_cast<char*>(place), *static_cast<char const*>(bits));
  } else if constexpr (sizeof(T) == 2) {
    _InterlockedExchange16(static_cast<short*>(place), *static_cast<short const*>(bits));
  } else if constexpr (sizeof(T) == 4) {
    _InterlockedExchange(static_cast<long*>(place), *static_cast<long const*>(bits));
  } else {
    _InterlockedExchange64(static_cast<long long*>(place), *static_cast<long long const*>(bits));
  }
}

}  // namespace nCompiler
