#include "oxdiagk/iTraceDestination.h"
#include "oxdiagk/tTrace.h"

// Threads that do not lock their lines may append at once. Their text then mixes, but each works on
// a copy of the write position that it has checked itself, so nobody writes beyond the buffer.

namespace nOXDIAG100 {
namespace {

constexpr u64 kLowBits = 0x0101010101010101;
constexpr u64 kHighBits = 0x8080808080808080;

u64 loadWord(char const* text) {
  u64 word = 0;
  __builtin_memcpy(&word, text, sizeof(word));
  return word;
}

// Whether one of the eight characters is NUL.
constexpr bool hasNul(u64 word) {
  return ((word - kLowBits) & ~word & kHighBits) != 0;
}

// Whether eight characters need no look at each: there is no newline and no NUL among them.
constexpr bool isPlain(u64 word) {
  return !hasNul(word) && !hasNul(word ^ (kLowBits * '\n'));
}

}  // namespace

char* tTrace::flush(char* end) {
  *end = 0;
  // Only the counted form carries what stands behind a NUL.
  if (lineHasNul == 0) {
    destination->put(lineBuffer);
  } else {
    destination->put(lineBuffer, static_cast<unsigned int>(end - lineBuffer));
    lineHasNul = 0;
  }
  return lineBuffer;
}

char* tTrace::appendCharacter(char character, char* position) {
  if (character == 0) lineHasNul = 1;
  *position++ = character;
  bool const isFull = position == lineBuffer + kLineBufferSize - 1;
  return character == '\n' || isFull ? flush(position) : position;
}

void tTrace::append(char const* text) {
  if (isWriting() && text != nullptr) append(text, __builtin_strlen(text));
}

void tTrace::append(char const* text, u64 length) {
  if (!isWriting() || text == nullptr) return;
  constexpr u64 kWordSize = sizeof(u64);
  char const* const lastWord = lineBuffer + kLineBufferSize - 1 - kWordSize;
  char const* const end = text + length;
  char* position = __atomic_load_n(&writePosition, __ATOMIC_RELAXED);
  while (text != end) {
    u64 const left = static_cast<u64>(end - text);
    if (left >= kWordSize && position < lastWord && isPlain(loadWord(text))) {
      __builtin_memcpy(position, text, kWordSize);
      position += kWordSize;
      text += kWordSize;
    } else {
      position = appendCharacter(*text++, position);
    }
  }
  __atomic_store_n(&writePosition, position, __ATOMIC_RELAXED);
}

}  // namespace nOXDIAG100
