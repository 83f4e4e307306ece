#include "oxdiagk/iTraceDestination.h"
#include "oxdiagk/tTrace.h"

// Threads that do not lock their lines may append at once. Their text then mixes, but each works on
// a copy of the write position that it has checked itself, so nobody writes beyond the buffer.

namespace nOXDIAG100 {

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
  *position++ = character;
  bool const isFull = position == lineBuffer + kLineBufferSize - 1;
  return character == '\n' || isFull ? flush(position) : position;
}

void tTrace::append(char const* text) {
  if (!isWriting() || text == nullptr) return;
  char* position = __atomic_load_n(&writePosition, __ATOMIC_RELAXED);
  for (; *text != 0; ++text) position = appendCharacter(*text, position);
  __atomic_store_n(&writePosition, position, __ATOMIC_RELAXED);
}

void tTrace::append(char const* text, u64 length) {
  if (!isWriting() || text == nullptr) return;
  char* position = __atomic_load_n(&writePosition, __ATOMIC_RELAXED);
  for (u64 index = 0; index < length; ++index) {
    if (text[index] == 0) lineHasNul = 1;
    position = appendCharacter(text[index], position);
  }
  __atomic_store_n(&writePosition, position, __ATOMIC_RELAXED);
}

}  // namespace nOXDIAG100
