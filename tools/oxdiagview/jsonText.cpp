#include "oxdiagview/jsonText.h"

#include <cstdint>
#include <cstdio>

namespace oxdiagview {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

unsigned char byteAt(std::string_view text, size_t place) {
  return place < text.size() ? static_cast<unsigned char>(text[place]) : 0;
}

bool continues(std::string_view text, size_t place) {
  return (byteAt(text, place) & 0xC0) == 0x80;
}

// How many bytes the character at `place` has; 0 if they are no UTF-8: too long a form, half of a
// pair, or beyond the last character.
size_t lengthOfCharacter(std::string_view text, size_t place) {
  unsigned char const first = byteAt(text, place);
  unsigned char const second = byteAt(text, place + 1);
  if (first < 0x80) return 1;
  if (first < 0xC2 || first > 0xF4 || !continues(text, place + 1)) return 0;
  if (first < 0xE0) return 2;
  bool const isLong = first == 0xE0 && second < 0xA0;
  bool const isHalf = first == 0xED && second >= 0xA0;
  if (isLong || isHalf || !continues(text, place + 2)) return 0;
  if (first < 0xF0) return 3;
  bool const isOutside = (first == 0xF0 && second < 0x90) || (first == 0xF4 && second >= 0x90);
  return isOutside || !continues(text, place + 3) ? 0 : 4;
}

bool isPlain(unsigned char byte) {
  return byte >= ' ' && byte < 0x7F && byte != '"' && byte != '\\';
}

void appendEscape(std::string& json, unsigned char byte) {
  char escape[8];
  if (byte == '"' || byte == '\\') {
    json += '\\';
    json += static_cast<char>(byte);
  } else {
    std::snprintf(escape, sizeof(escape), "\\u%04X", static_cast<unsigned int>(byte));
    json += escape;
  }
}

}  // namespace

void appendJsonText(std::string& json, std::string_view text) {
  json += '"';
  for (size_t place = 0; place < text.size();) {
    size_t end = place;
    while (end < text.size() && isPlain(byteAt(text, end))) ++end;
    json += text.substr(place, end - place);
    place = end;
    if (place == text.size()) break;
    size_t const length = lengthOfCharacter(text, place);
    if (length == 1) appendEscape(json, byteAt(text, place));
    if (length == 0) json += kReplacement;
    if (length > 1) json += text.substr(place, length);
    place += length == 0 ? 1 : length;
  }
  json += '"';
}

}  // namespace oxdiagview
