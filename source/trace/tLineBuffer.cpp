#include "oxdiagk/tLineBuffer.h"

#include "oxdiagk/atomicWord.h"
#include "oxdiagk/tDestinationSlot.h"
#include "trace/textWords.h"

namespace nOXDIAG100 {
namespace {

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

// What a word of text adds to the marks of newlines: the uppermost bit of some byte if there is one
// in it. What shorter texts leave of the word has none.
constexpr u64 markNewline(u64 word) {
  u64 const zeroed = word ^ eightOf('\n');
  return (zeroed - eightOf('\x01')) & ~zeroed;
}

// Copies one word and returns it.
template <class tWord>
OXDIAG_MIXES_TEXT tWord copyWord(char* to, char const* from) {
  tWord const word = readWord<tWord>(from);
  writeWord(to, word);
  return word;
}

// Copies text of up to seven characters and returns them as one number, some of them twice.
OXDIAG_MIXES_TEXT inline u64 copyShort(char* to, char const* from, u64 length) {
  if (length >= sizeof(u32)) {
    u64 const last = length - sizeof(u32);
    return copyWord<u32>(to, from) | u64{copyWord<u32>(to + last, from + last)} << 32;
  }
  if (length == 0) return 0;
  u64 const middle = length / 2;
  u64 const last = length - 1;
  u64 word = copyWord<u8>(to, from);
  word |= u64{copyWord<u8>(to + middle, from + middle)} << 8;
  return word | u64{copyWord<u8>(to + last, from + last)} << 16;
}

// Where the newlines of a text are.
enum tNewlines { kNone, kAtEnd, kSomewhere };

// Copies text a word at a time, the last one in part upon the one before. Of a short text that is a
// line it says kSomewhere.
OXDIAG_MIXES_TEXT inline tNewlines copyPiece(char* to, char const* from, u64 length) {
  constexpr u64 kMarks = eightOf('\x80');
  if (length < sizeof(u64)) {
    return (markNewline(copyShort(to, from, length)) & kMarks) == 0 ? kNone : kSomewhere;
  }
  u64 const last = length - sizeof(u64);
  u64 marks = 0;
  for (u64 done = 0; done < last; done += sizeof(u64)) {
    marks |= markNewline(copyWord<u64>(to + done, from + done));
  }
  u64 const lastMarks = markCharacter(copyWord<u64>(to + last, from + last), '\n');
  if (((marks & kMarks) | lastMarks) == 0) return kNone;
  bool const isLine = (marks & kMarks) == 0 && lastMarks == u64{0x80} << 56;
  return isLine ? kAtEnd : kSomewhere;
}

// Of a text with a newline among its `most` characters, that one included. Never more than `most`:
// another thread may write over the newline.
OXDIAG_MIXES_TEXT u64 getLineLength(char const* text, u64 most) {
  u64 length = 0;
  for (; most - length >= sizeof(u64); length += sizeof(u64)) {
    u64 const marks = markCharacter(readWord<u64>(text + length), '\n');
    if (marks != 0) return length + static_cast<u64>(__builtin_ctzll(marks)) / 8 + 1;
  }
  while (length < most && text[length++] != '\n') {
  }
  return length;
}

}  // namespace

// Nearly every text does not fill the piece, and has no newline but as its last character.
OXDIAG_MIXES_TEXT void tLineBuffer::append(char const* from, u64 length, tDestinationSlot& slot) {
  char* const position = loadRelaxed(writePosition);
  if (length >= getRoomFrom(position)) return appendPieces(from, from + length, slot);
  switch (copyPiece(position, from, length)) {
    case kNone:
      storeRelaxed(writePosition, position + length);
      break;
    case kAtEnd:
      flush(position + length, slot);
      break;
    case kSomewhere:
      appendPieces(from, from + length, slot);
      break;
  }
}

// One step a piece: up to a newline, to where the piece is full, or to the end of the text. The
// newline is looked for in the copy: the author's text may change meanwhile.
OXDIAG_MIXES_TEXT void tLineBuffer::appendPieces(char const* from, char const* end,
                                                 tDestinationSlot& slot) {
  while (from != end) {
    char* const position = loadRelaxed(writePosition);
    u64 const room = getRoomFrom(position);
    u64 const left = static_cast<u64>(end - from);
    u64 length = left < room ? left : room;
    bool isEnded = copyPiece(position, from, length) != kNone;
    if (isEnded) {
      length = getLineLength(position, length);
      isEnded = position[length - 1] == '\n';
    }
    from += length;
    if (isEnded || length == room) {
      flush(position + length, slot);
    } else {
      storeRelaxed(writePosition, position + length);
    }
  }
}

OXDIAG_MIXES_TEXT void tLineBuffer::appendLine(char const* line, u64 length,
                                               tDestinationSlot& slot) {
  if (loadRelaxed(writePosition) != &text[0]) return append(line, length, slot);
  slot.send(line, static_cast<u32>(length));
}

OXDIAG_MIXES_TEXT void tLineBuffer::endPiece(tDestinationSlot& slot) {
  char* const position = loadRelaxed(writePosition);
  *position = '\n';
  flush(position + 1, slot);
}

OXDIAG_MIXES_TEXT bool tLineBuffer::appendPrefix(char const* from, u32 length) {
  char* const position = loadRelaxed(writePosition);
  if (kCopied + kClosingLength >= getRoomFrom(position)) return false;
  for (u32 done = 0; done < kCopied; done += sizeof(u64)) {
    writeWord(position + done, readWord<u64>(from + done));
  }
  position[length] = ']';
  position[length + 1] = ' ';
  storeRelaxed(writePosition, position + length + kClosingLength);
  return true;
}

// The buffer is empty before the text goes out: what the destination traces from its put is a text
// of its own, and what is left of it stays in front of what follows here.
void tLineBuffer::flush(char const* end, tDestinationSlot& slot) {
  u32 const length = static_cast<u32>(end - text);
  char copy[kSize];
  copyText(copy, text, length);
  storeRelaxed(writePosition, &text[0]);
  slot.send(copy, length);
}

}  // namespace nOXDIAG100
