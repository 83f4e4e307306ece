#pragma once

// Words that threads share without a lock, for the inline code of public headers. A word is read
// and stored as a whole.

#include "compiler/compiler.h"

namespace nOXDIAG100 {

// In no order with other words.
template <class T>
T loadRelaxed(T const& word) {
  return nCompiler::loadRelaxed(word);
}
template <class T, class V>
void storeRelaxed(T& word, V value) {
  nCompiler::storeRelaxed(word, static_cast<T>(value));
}

// Who reads what a release stored also sees what was stored before it.
template <class T>
T loadAcquire(T const& word) {
  return nCompiler::loadAcquire(word);
}
template <class T, class V>
void storeRelease(T& word, V value) {
  nCompiler::storeRelease(word, static_cast<T>(value));
}

// In one order with all others that are loaded and stored so.
template <class T>
T loadOrdered(T const& word) {
  return nCompiler::loadOrdered(word);
}
template <class T, class V>
void storeOrdered(T& word, V value) {
  nCompiler::storeOrdered(word, static_cast<T>(value));
}

}  // namespace nOXDIAG100
