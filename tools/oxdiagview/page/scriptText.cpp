#include "oxdiagview/page/scriptText.h"

#include <cstdint>

namespace oxdiagview {

namespace {

constexpr char kReplacement[] = "\uFFFD";
constexpr unsigned char kDelete = 0x7F;

bool isContinuation(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

size_t lengthByFirst(unsigned char first) {
  if (first >= 0xC2 && first <= 0xDF) return 2;
  if (first >= 0xE0 && first <= 0xEF) return 3;
  return first >= 0xF0 && first <= 0xF4 ? 4 : 0;
}

// Overlong forms, surrogates, and what is beyond U+10FFFF.
bool isSecondAllowed(unsigned char first, unsigned char second) {
  if (first == 0xE0) return second >= 0xA0;
  if (first == 0xED) return second < 0xA0;
  if (first == 0xF0) return second >= 0x90;
  return first != 0xF4 || second < 0x90;
}

// How many bytes the character at the beginning has, or 0 if it is none. It is not ASCII.
size_t lengthOfCharacter(std::string_view text) {
  auto const first = static_cast<unsigned char>(text[0]);
  size_t const length = lengthByFirst(first);
  if (length == 0 || length > text.size()) return 0;
  for (size_t at = 1; at < length; ++at) {
    if (!isContinuation(text[at])) return 0;
  }
  return isSecondAllowed(first, static_cast<unsigned char>(text[1])) ? length : 0;
}

void appendControlPicture(std::string& json, unsigned char control) {
  unsigned char const place = control == kDelete ? 0x21 : control;
  json += "\xE2\x90";
  json += static_cast<char>(0x80 + place);
}

void appendAscii(std::string& json, char character) {
  auto const code = static_cast<unsigned char>(character);
  if (character == '"' || character == '\\') {
    json += '\\';
    json += character;
  } else if (character == '\t') {
    json += "\\t";
  } else if (character == '<') {
    json += "\\u003C";
  } else if (code < ' ' || code == kDelete) {
    appendControlPicture(json, code);
  } else {
    json += character;
  }
}

}  // namespace

void appendScriptText(std::string& json, std::string_view text) {
  json += '"';
  while (!text.empty()) {
    bool const isAscii = static_cast<unsigned char>(text[0]) < 0x80;
    size_t const length = isAscii ? 1 : lengthOfCharacter(text);
    if (isAscii) {
      appendAscii(json, text[0]);
    } else if (length != 0) {
      json += text.substr(0, length);
    } else {
      json += kReplacement;
    }
    text.remove_prefix(length == 0 ? 1 : length);
  }
  json += '"';
}

}  // namespace oxdiagview
