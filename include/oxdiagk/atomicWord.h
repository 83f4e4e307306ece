#pragma once

// Words that threads share without a lock, for the inline code of public headers: the one place
// there that needs what compilers give each in their own way. A word is read and stored as a whole.

namespace nOXDIAG100 {

// In no order with other words.
template <class T>
T loadRelaxed(T const& word) {
  return __atomic_load_n(&word, __ATOMIC_RELAXED);
}
template <class T, class V>
void storeRelaxed(T& word, V value) {
  __atomic_store_n(&word, static_cast<T>(value), __ATOMIC_RELAXED);
}

// Who reads what a release stored also sees what was stored before it.
template <class T>
T loadAcquire(T const& word) {
  return __atomic_load_n(&word, __ATOMIC_ACQUIRE);
}
template <class T, class V>
void storeRelease(T& word, V value) {
  __atomic_store_n(&word, static_cast<T>(value), __ATOMIC_RELEASE);
}

// In one order with all others that are loaded and stored so.
template <class T>
T loadOrdered(T const& word) {
  return __atomic_load_n(&word, __ATOMIC_SEQ_CST);
}
template <class T, class V>
void storeOrdered(T& word, V value) {
  __atomic_store_n(&word, static_cast<T>(value), __ATOMIC_SEQ_CST);
}

}  // namespace nOXDIAG100
