#include "oxdiagreport/reportText.h"

#include <algorithm>
#include <cstdio>

#include "options/utf8Text.h"

namespace {

void append(std::string& utf8, unsigned int character) {
  auto const add = [&utf8](unsigned int byte) { utf8 += static_cast<char>(byte); };
  if (character < 0x80) {
    add(character);
  } else if (character < 0x800) {
    add(0xC0 | character >> 6);
    add(0x80 | (character & 0x3F));
  } else if (character < 0x10000) {
    add(0xE0 | character >> 12);
    add(0x80 | (character >> 6 & 0x3F));
    add(0x80 | (character & 0x3F));
  } else {
    add(0xF0 | character >> 18);
    add(0x80 | (character >> 12 & 0x3F));
    add(0x80 | (character >> 6 & 0x3F));
    add(0x80 | (character & 0x3F));
  }
}

constexpr unsigned int kReplacement = 0xFFFD;
constexpr char kUnicodeEscape[] = "\\u%04X";

bool isHigh(unsigned int unit) {
  return unit >= 0xD800 && unit < 0xDC00;
}

bool isLow(unsigned int unit) {
  return unit >= 0xDC00 && unit < 0xE000;
}

// Characters below U+0100 by their own format.
std::string escaped(std::string_view utf8, char const* lowFormat) {
  std::string shown;
  while (!utf8.empty()) {
    std::string_view const character = utf8.substr(0, std::max<size_t>(lengthOfCharacter(utf8), 1));
    if (character != "\n" && steersTerminal(character)) {
      unsigned int const code = codeOf(character);
      char escape[8];
      std::snprintf(escape, sizeof(escape), code < 0x100 ? lowFormat : kUnicodeEscape, code);
      shown += escape;
    } else {
      shown += character;
    }
    utf8.remove_prefix(character.size());
  }
  return shown;
}

}  // namespace

std::string utf8Of(_STL::wstring const& text) {
  std::string utf8;
  for (size_t index = 0; index < text.size(); ++index) {
    unsigned int const unit = text[index];
    unsigned int const next = index + 1 < text.size() ? text[index + 1] : 0;
    if (isHigh(unit) && isLow(next)) {
      append(utf8, 0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00));
      ++index;
    } else {
      append(utf8, isHigh(unit) || isLow(unit) ? kReplacement : unit);
    }
  }
  return utf8;
}

std::string utf8Of(char const* bytes) {
  std::string utf8;
  for (; *bytes != '\0'; ++bytes) append(utf8, static_cast<unsigned char>(*bytes));
  return utf8;
}

std::string inOneLine(std::string_view utf8) {
  std::string line;
  for (char const character : withoutControls(utf8)) {
    if (character == '\n') {
      line += "\\x0A";
    } else {
      line += character;
    }
  }
  return line;
}

std::string withoutControls(std::string_view utf8) {
  return escaped(utf8, "\\x%02X");
}

std::string withControlsForJson(std::string_view json) {
  return escaped(json, kUnicodeEscape);
}
