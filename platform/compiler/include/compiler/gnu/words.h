#pragma once

// Words that threads share without a lock: numbers, enumerators and pointers of 1, 2, 4 or 8 bytes,
// aligned to their size. A word is read and stored as a whole.

namespace nCompiler {

// In no order with other words.
template <class T>
T loadRelaxed(T const& word) {
  return __atomic_load_n(&word, __ATOMIC_RELAXED);
}
template <class T>
void storeRelaxed(T& word, T value) {
  __atomic_store_n(&word, value, __ATOMIC_RELAXED);
}

// Who reads what a release stored also sees what was stored before it.
template <class T>
T loadAcquire(T const& word) {
  return __atomic_load_n(&word, __ATOMIC_ACQUIRE);
}
template <class T>
void storeRelease(T& word, T value) {
  __atomic_store_n(&word, value, __ATOMIC_RELEASE);
}

// In one order with all others that are loaded and stored so.
template <class T>
T loadOrdered(T const& word) {
  return __atomic_load_n(&word, __ATOMIC_SEQ_CST);
}
template <class T>
void storeOrdered(T& word, T value) {
  __atomic_store_n(&word, value, __ATOMIC_SEQ_CST);
}

}  // namespace nCompiler
