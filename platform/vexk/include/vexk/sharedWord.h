#pragma once

// Words that one thread reads while another stores them: each is read and stored as a whole, and
// there is no order among several. Any IRQL.

template <class T>
inline T loadWord(T const& word) {
  return __atomic_load_n(&word, __ATOMIC_RELAXED);
}

template <class T, class V>
inline void storeWord(T& word, V value) {
  __atomic_store_n(&word, static_cast<T>(value), __ATOMIC_RELAXED);
}
