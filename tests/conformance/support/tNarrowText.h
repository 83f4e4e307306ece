#pragma once

#include "stl/string.h"

// Wide ASCII text as narrow text, for comparison; anything else is a '?'.
class tNarrowText {
 public:
  explicit tNarrowText(_STL::wstring const& text);
  char const* get() const { return characters; }

 private:
  char characters[256];
};

inline tNarrowText::tNarrowText(_STL::wstring const& text) {
  u32 length = 0;
  for (wchar_t character : text) {
    if (length + 1 == sizeof characters) break;
    characters[length++] = character < 0x7F ? static_cast<char>(character) : '?';
  }
  characters[length] = '\0';
}
