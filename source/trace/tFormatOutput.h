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

  // For at most kShortSize characters out of an array of at least that size: one move of fixed
  // length.
  void putShort(char const* text, u64 length) {
    if (!hasRoomForShort()) return put(text, length);
    __builtin_memcpy(next, text, kShortSize);
    next += length;
  }

  // Puts the low bytes of units, `most` of them or up to a terminator. Reads none that it need not
  // put. Returns how many it put.
  template <class tUnit>
  u64 putText(tUnit const* text, u64 most) {
    u64 const room = static_cast<u64>(last - next);
    u64 const limit = most < room ? most : room;
    u64 taken = 0;
    for (; taken != limit && text[taken] != 0; ++taken)
      next[taken] = static_cast<char>(text[taken]);
    if (taken == room && taken != most && text[taken] != 0) cut = true;
    if constexpr (sizeof(tUnit) != sizeof(char)) nul = nul || taken != 0;
    next += taken;
    return taken;
  }

  // Puts the plain text at the beginning of a format, and moves the format behind it. Returns what
  // ends it: a percent sign or the terminator.
  char putPlain(char const*& format) {
    char const* const begin = format;
    while (isPlain(*format)) ++format;
    char const end = *format;
    if (format == begin + 1) {
      put(*begin);
    } else if (format != begin) {
      put(begin, static_cast<u64>(format - begin));
    }
    return end;
  }

  void fill(char character, u64 count) {
    if (count == 0) return;
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

  // Whether there may be a NUL character in the text: the low byte of a unit may be one.
  bool mayHoldNul() const { return nul; }

  // Terminates the text and returns its length.
  u32 finish() {
    *next = 0;
    return static_cast<u32>(next - first);
  }

 private:
  // Nearly all characters of a text stand behind the percent sign.
  static bool isPlain(char character) {
    u8 const code = static_cast<u8>(character);
    return code > '%' || (code != '%' && code != 0);
  }

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
  bool nul = false;
};

}  // namespace nOXDIAG100
