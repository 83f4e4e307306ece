#pragma once

#include <string>

// ASCII text; the C++ library's wide text is wider than the kernel's.
inline std::string narrow(wchar_t const* text) {
  std::string narrowed;
  for (; *text != 0; ++text) narrowed += static_cast<char>(*text);
  return narrowed;
}
