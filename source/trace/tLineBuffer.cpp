#include "oxdiagk/tLineBuffer.h"

#include "oxdiagk/tDestinationSlot.h"
#include "trace/mixedText.h"
#include "vexk/sharedWord.h"

namespace nOXDIAG100 {
namespace {

constexpr u64 kLowBits = 0x0101010101010101;
constexpr u64 kHighBits = 0x8080808080808080;
constexpr u64 kClosingLength = 2;

// Four or eight characters as one number.
template <class tWord>
OXDIAG_MIXES_TEXT tWord readWord(char const* text) {
  tWord word = 0;
  __builtin_memcpy(&word, text, sizeof(word));
  return word;
}

template <class tWord>
OXDIAG_MIXES_TEXT void writeWord(char* to, tWord word) {
  __builtin_memcpy(to, &word, sizeof(word));
}

// Whether one of the characters is a newline.
constexpr bool hasNewline(u64 word) {
  u64 const zeroed = word ^ (kLowBits * '\n');
  return ((zeroed - kLowBits) & ~zeroed & kHighBits) != 0;
}

// Of four; the upper half has none.
constexpr bool hasNewline(u32 word) {
  return hasNewline(static_cast<u64>(word));
}

// Copies one word; false when there is a newline in it.
template <class tWord>
OXDIAG_MIXES_TEXT bool copyWord(char* to, char const* from) {
  tWord const word = readWord<tWord>(from);
  writeWord(to, word);
  return !hasNewline(word);
}

// Copies text of up to seven characters, as copyPlain.
OXDIAG_MIXES_TEXT inline u64 copyShort(char* to, char const* from, u64 length) {
  if (length >= sizeof(u32)) {
    u64 const last = length - sizeof(u32);
    if (!copyWord<u32>(to, from)) return 0;
    return copyWord<u32>(to + last, from + last) ? length : last;
  }
  for (u64 index = 0; index < length; ++index) {
    if (from[index] == '\n') return index;
    to[index] = from[index];
  }
  return length;
}

// Copies text a word at a time, the last one in part upon the one before. Returns how many
// characters were copied in front of the first word with a newline.
OXDIAG_MIXES_TEXT inline u64 copyPlain(char* to, char const* from, u64 length) {
  if (length < sizeof(u64)) return copyShort(to, from, length);
  u64 const last = length - sizeof(u64);
  for (u64 done = 0; done < last; done += sizeof(u64)) {
    if (!copyWord<u64>(to + done, from + done)) return done;
  }
  return copyWord<u64>(to + last, from + last) ? length : last;
}

}  // namespace

// Nearly every text has no newline, and does not fill the piece.
OXDIAG_MIXES_TEXT void tLineBuffer::append(char const* from, u64 length, tDestinationSlot& slot) {
  char* const position = loadWord(writePosition);
  u64 const room = getRoomFrom(position);
  u64 const plain = copyPlain(position, from, length < room ? length : room - 1);
  storeWord(writePosition, position + plain);
  if (plain != length) appendPieces(from + plain, from + length, slot);
}

// From a text whose next characters complete a piece.
OXDIAG_MIXES_TEXT void tLineBuffer::appendPieces(char const* from, char const* end,
                                                 tDestinationSlot& slot) {
  char* position = loadWord(writePosition);
  while (from != end) {
    char const character = *from++;
    *position++ = character;
    if (character != '\n' && getRoomFrom(position) != 0) continue;
    flush(position, slot);
    append(from, static_cast<u64>(end - from), slot);
    return;
  }
  storeWord(writePosition, position);
}

OXDIAG_MIXES_TEXT void tLineBuffer::endPiece(tDestinationSlot& slot) {
  char* const position = loadWord(writePosition);
  *position = '\n';
  flush(position + 1, slot);
}

OXDIAG_MIXES_TEXT bool tLineBuffer::appendPrefix(char const* from, u32 length) {
  char* const position = loadWord(writePosition);
  if (kCopied + kClosingLength >= getRoomFrom(position)) return false;
  for (u32 done = 0; done < kCopied; done += sizeof(u64)) {
    writeWord(position + done, readWord<u64>(from + done));
  }
  position[length] = ']';
  position[length + 1] = ' ';
  storeWord(writePosition, position + length + kClosingLength);
  return true;
}

// The buffer is empty before the text goes out: what the destination traces from its put is a text
// of its own, and what is left of it stays in front of what follows here.
void tLineBuffer::flush(char const* end, tDestinationSlot& slot) {
  u32 const length = static_cast<u32>(end - text);
  char copy[kSize];
  copyMixedText(copy, text, length);
  storeWord(writePosition, &text[0]);
  slot.send(copy, length);
}

}  // namespace nOXDIAG100
