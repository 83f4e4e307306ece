#pragma once

#include "ntos/types.h"

namespace ntoshost {

// A part of a kernel path, up to a separator or the end, as a file name of this machine.
class NarrowName {
 public:
  static constexpr size_t kCapacity = 256;  // bytes, with the terminator

  // False when the part is no name: empty, "." or "..", too long, or with a character that file
  // names do not have.
  bool set(wchar_t const* text, size_t length);

  // Takes `name`, which fits, as it is.
  void setNarrow(char const* name);

  char const* get() const { return m_text; }

 private:
  bool append(u32 character);

  char m_text[kCapacity] = "";
  size_t m_length = 0;
};

constexpr bool isSeparator(wchar_t character) {
  return character == '\\' || character == '/';
}

}  // namespace ntoshost
