#pragma once

// The text of saved settings, for the stacks of pushConfiguration and popConfiguration.

#include "config/options/tOptionWords.h"
#include "oxdiagk/tConfigurable.h"
#include "stl/vector.h"
#include "vexk/memory.h"

namespace nOXDIAG100 {

// Room for one more saved configuration: the stack at least doubles when it is full. False when
// memory is exhausted, and then the stack remembers the failure.
template <class T>
bool makeRoom(_STL::vector<T>& stack) {
  size_t const count = stack.size();
  return count < stack.capacity() || stack.reserve(count == 0 ? 1 : 2 * count);
}

// The whole inquired text of whatever has an inquire, in a block with these allocation flags; null
// when memory is exhausted, or when the object tells no size. A switch that another thread sets
// meanwhile may make the text longer than it was when it was measured; then it is taken anew, for
// the words at its end must not be cut.
template <class T>
char* copySettings(T& object, tMemAllocationFlags flags) {
  constexpr int kMostAttempts = 100;
  for (int attempt = 1;; ++attempt) {
    unsigned int needed = 0;
    object.inquire(nullptr, 0, &needed);
    i32 status = needed == 0 ? kStatusOutOfMemory : 0;
    char* const text = static_cast<char*>(_memNewUsingCRT(needed, flags, status));
    if (text == nullptr) return nullptr;
    unsigned int written = 0;
    object.inquire(text, needed, &written);
    if (written <= needed || attempt == kMostAttempts) return text;
    _memDelete(text);
  }
}

// Configures `object` with a text of copySettings and frees the text. False, and nothing is
// configured, when the words of the text cannot be allocated.
inline bool restoreSettings(tConfigurable& object, char* text) {
  tOptionWords const words(text);
  _memDelete(text);
  if (words.hasFailed()) return false;
  object.configure(words.getCount(), words.getWords());
  return true;
}

}  // namespace nOXDIAG100
