#pragma once

#include "ntos/types.h"

namespace nOXDIAG100 {

// Takes characters into a fixed buffer, as many as there is room for beside a terminator. However
// much is put, the time is that of filling the buffer. What the buffer holds behind the terminator
// means nothing.
class tFormatOutput {
 public:
  static constexpr u32 kShortSize = 16;

  // `size` in bytes, at least 1.
  tFormatOutput(char* buffer, u32 size) : first(buffer), next(buffer), last(buffer + size - 1) {}

  void put(char character) {
    if (next == last) {
      cut = true;
    } else {
      *next++ = character;
    }
  }

  void put(char const* text, u64 length) {
    u64 const taken = admit(length);
    __builtin_memcpy(next, text, taken);
    next += taken;
  }

  // For few characters out of an array of at least kShortSize: one move of fixed length.
  void putShort(char const* text, u64 length) {
    if (length > kShortSize || !hasRoomForShort()) return put(text, length);
    __builtin_memcpy(next, text, kShortSize);
    next += length;
  }

  // Puts the low byte of every unit.
  void put(wchar_t const* text, u64 length) {
    u64 const taken = admit(length);
    for (u64 index = 0; index < taken; ++index) next[index] = static_cast<char>(text[index]);
    next += taken;
  }

  void fill(char character, u64 count) {
    if (count <= kShortSize && hasRoomForShort()) {
      __builtin_memset(next, character, kShortSize);
      next += count;
    } else {
      u64 const taken = admit(count);
      __builtin_memset(next, character, taken);
      next += taken;
    }
  }

  // Whether something that was put found no room.
  bool isCut() const { return cut; }

  // Terminates the text. Returns its length, or -1 when it was cut.
  i32 finish() {
    *next = 0;
    return cut ? -1 : static_cast<i32>(next - first);
  }

 private:
  bool hasRoomForShort() const { return static_cast<u64>(last - next) >= kShortSize; }

  // How many of `wanted` characters there is room for.
  u64 admit(u64 wanted) {
    u64 const room = static_cast<u64>(last - next);
    if (wanted <= room) return wanted;
    cut = true;
    return room;
  }

  char* const first;
  char* next;
  char* const last;  // the terminator's place when the buffer is full
  bool cut = false;
};

}  // namespace nOXDIAG100
