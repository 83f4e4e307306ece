#include "system/windows/wideText.h"

#include <windows.h>

std::string utf8Of(wchar_t const* text) {
  int const size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
  std::string utf8(static_cast<size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text, -1, utf8.data(), size, nullptr, nullptr);
  utf8.resize(utf8.size() - 1);
  return utf8;
}

std::wstring wideOf(std::string const& utf8) {
  int const size = MultiByteToWideChar(CP_UTF8, 0, utf8.c_str(), -1, nullptr, 0);
  std::wstring text(static_cast<size_t>(size), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, utf8.c_str(), -1, text.data(), size);
  text.resize(text.size() - 1);
  return text;
}
