#include "options/utf8Text.h"

#include <algorithm>

#include "options/byteWords.h"

namespace {

constexpr std::string_view kTab = "    ";

unsigned char byteAt(std::string_view text, size_t place) {
  return place < text.size() ? static_cast<unsigned char>(text[place]) : 0;
}

bool isContinuation(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

size_t lengthByFirst(unsigned char first) {
  if (first < 0x80) return 1;
  if (first >= 0xC2 && first <= 0xDF) return 2;
  if (first >= 0xE0 && first <= 0xEF) return 3;
  return first >= 0xF0 && first <= 0xF4 ? 4 : 0;
}

// Overlong forms, halves of pairs, and what is beyond the last character.
bool isSecondAllowed(unsigned char first, unsigned char second) {
  if (first == 0xE0) return second >= 0xA0;
  if (first == 0xED) return second < 0xA0;
  if (first == 0xF0) return second >= 0x90;
  return first != 0xF4 || second < 0x90;
}

bool isControl(unsigned int code) {
  return code < ' ' || (code >= 0x7F && code < 0xA0);
}

bool isDirection(unsigned int code) {
  return (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
}

}  // namespace

size_t lengthOfCharacter(std::string_view text) {
  unsigned char const first = byteAt(text, 0);
  size_t const length = lengthByFirst(first);
  if (length < 2) return length;
  if (length > text.size() || !isSecondAllowed(first, byteAt(text, 1))) return 0;
  std::string_view const rest = text.substr(1, length - 1);
  return std::all_of(rest.begin(), rest.end(), isContinuation) ? length : 0;
}

unsigned int codeOf(std::string_view character) {
  unsigned int const first = byteAt(character, 0);
  unsigned int const second = byteAt(character, 1) & 0x3Fu;
  unsigned int const third = byteAt(character, 2) & 0x3Fu;
  if (character.size() == 1) return first;
  return character.size() == 2 ? (first & 0x1Fu) << 6 | second
                               : (first & 0x0Fu) << 12 | second << 6 | third;
}

bool steersTerminal(std::string_view character) {
  if (character.size() > 3) return false;
  unsigned int const code = codeOf(character);
  return isControl(code) || isDirection(code);
}

void appendForTerminal(std::string& shown, std::string_view text) {
  while (true) {
    size_t const plain = findMarked(text, markUnprintable);
    shown += text.substr(0, plain);
    text.remove_prefix(plain);
    if (text.empty()) return;
    std::string_view const character = text.substr(0, std::max<size_t>(lengthOfCharacter(text), 1));
    if (character == "\t") {
      shown += kTab;
    } else if (steersTerminal(character)) {
      shown += '?';
    } else {
      shown += character;
    }
    text.remove_prefix(character.size());
  }
}
