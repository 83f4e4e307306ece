#include "oxdiagk/tTrace.h"
#include "trace/mixedText.h"

// Threads that do not lock their lines may append at once. Their text then mixes, but each works on
// a copy of the write position that it has checked itself, so nobody writes beyond the buffer. What
// goes to the destination is a copy, which nobody changes while the destination reads it.

namespace nOXDIAG100 {
namespace {

constexpr u64 kLowBits = 0x0101010101010101;
constexpr u64 kHighBits = 0x8080808080808080;

// Four or eight characters as one number.
template <class tWord>
tWord loadWord(char const* text) {
  tWord word = 0;
  __builtin_memcpy(&word, text, sizeof(word));
  return word;
}

// Whether one of the eight characters is NUL.
constexpr bool hasNul(u64 word) {
  return ((word - kLowBits) & ~word & kHighBits) != 0;
}

// Whether the characters need no look at each: there is no newline and no NUL among them.
constexpr bool isPlain(u64 word) {
  return !hasNul(word) && !hasNul(word ^ (kLowBits * '\n'));
}

// The same of four; the upper half is made plain.
constexpr bool isPlain(u32 word) {
  return isPlain(word | (kHighBits << 32));
}

// Copies one word of plain characters if that leaves a character of the room; returns its length,
// or 0 when the next character must be looked at.
template <class tWord>
OXDIAG_MIXES_TEXT u64 copyWord(char const* text, u64 left, char* position, u64 room) {
  bool const fits = left >= sizeof(tWord) && room > sizeof(tWord);
  if (!fits || !isPlain(loadWord<tWord>(text))) return 0;
  __builtin_memcpy(position, text, sizeof(tWord));
  return sizeof(tWord);
}

u64 copyPlain(char const* text, u64 left, char* position, u64 room) {
  u64 const copied = copyWord<u64>(text, left, position, room);
  return copied != 0 ? copied : copyWord<u32>(text, left, position, room);
}

}  // namespace

// The line buffer is empty before the text goes out: what the destination traces from its put is a
// text of its own, and what is left of it stays in front of what follows here.
char* tTrace::flush(char const* end) {
  u32 const length = static_cast<u32>(end - lineBuffer);
  char text[kLineBufferSize];
  copyMixedText(text, lineBuffer, length);
  store(writePosition, &lineBuffer[0]);
  slot.send(text, length);
  return load(writePosition);
}

OXDIAG_MIXES_TEXT char* tTrace::appendCharacter(char character, char* position) {
  *position++ = character;
  bool const isFull = position == lineBuffer + kLineBufferSize - 1;
  return character == '\n' || isFull ? flush(position) : position;
}

void tTrace::append(char const* text) {
  if (isWriting() && text != nullptr) append(text, __builtin_strlen(text));
}

void tTrace::append(char const* text, u64 length) {
  if (!isWriting() || text == nullptr) return;
  char const* const end = text + length;
  char const* const full = lineBuffer + kLineBufferSize - 1;
  char* position = load(writePosition);
  while (text != end) {
    u64 const left = static_cast<u64>(end - text);
    u64 const copied = copyPlain(text, left, position, static_cast<u64>(full - position));
    if (copied == 0) {
      position = appendCharacter(*text++, position);
    } else {
      position += copied;
      text += copied;
    }
  }
  store(writePosition, position);
}

}  // namespace nOXDIAG100
