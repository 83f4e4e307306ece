#pragma once

// Words that threads share without a lock, for the inline code of public headers: the one place
// there that needs what compilers give each in their own way. A word is read and stored as a whole.

namespace nOXDIAG100 {

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

}  // namespace nOXDIAG100
