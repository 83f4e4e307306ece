#pragma once

#include "compiler/types.h"
#include "oxdiagk/api.h"

namespace nOXDIAG100 {

class tDestinationSlot;

// The line of a trace stream while it is written. Text collects here, and goes to the destination
// slot at each newline and when the buffer is full. Part of tTrace, of use to nobody else.
//
// Threads that do not lock their lines may append at once. Their text then mixes, but each works on
// a copy of the position that it has checked itself, so nobody writes beyond the buffer. What goes
// to the slot is a copy, which nobody changes while the destination reads it.
class OXDIAG_API tLineBuffer {
 public:
  static constexpr u32 kSize = 256;
  static constexpr u32 kCapacity = kSize - 1;  // characters of a piece at most

  tLineBuffer() = default;
  tLineBuffer(tLineBuffer const&) = delete;
  tLineBuffer& operator=(tLineBuffer const&) = delete;

  // Appends exactly `length` characters; what is full or ended goes to the slot.
  void append(char const* text, u64 length, tDestinationSlot& slot);

  // Appends a line of at most kCapacity characters, the last of which is its only newline, and
  // which nobody changes meanwhile: it goes to the slot without a copy when it begins a piece.
  void appendLine(char const* line, u64 length, tDestinationSlot& slot);

  // Appends a newline.
  void endPiece(tDestinationSlot& slot);

  // Appends a prefix: `length` of the kCopied characters at `text`, and "] ". All kCopied of them
  // are readable and none of those taken is a newline. False, and nothing is done, when there may
  // not be room for it in this piece.
  static constexpr u32 kCopied = 56;
  bool appendPrefix(char const* text, u32 length);

  // What has not gone to the slot yet; for who looks at it when nobody writes any more.
  char const* getText() const { return text; }
  u64 getLength() const { return static_cast<u64>(writePosition - text); }

 private:
  void appendPieces(char const* from, char const* end, tDestinationSlot& slot);
  void flush(char const* end, tDestinationSlot& slot);
  u64 getRoomFrom(char const* position) const {
    return static_cast<u64>(text + kCapacity - position);
  }

  char text[kSize] = {};
  char* writePosition = text;
};

}  // namespace nOXDIAG100
