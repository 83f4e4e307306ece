#include "oxdiagview/jsonText.h"

#include <algorithm>

#include "options/byteWords.h"
#include "options/utf8Text.h"

namespace oxdiagview {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

// What JSON does not take as it is. Of printable bytes the quote and the backslash become 0, from
// which 1 is taken.
uint64_t markSpecial(uint64_t word) {
  uint64_t const quotes = word ^ eightOf('"');
  uint64_t const slashes = word ^ eightOf('\\');
  return markUnprintable(word) | (quotes - eightOf(1)) | (slashes - eightOf(1));
}

void appendEscape(std::string& json, std::string_view character) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  json += '\\';
  if (character == "\"" || character == "\\") {
    json += character;
    return;
  }
  json += 'u';
  unsigned int const code = codeOf(character);
  for (int shift = 12; shift >= 0; shift -= 4) json += kDigits[code >> shift & 0xF];
}

// Of what is not plain. What steers a terminal is escaped, since somebody may print it there.
size_t appendCharacter(std::string& json, std::string_view text) {
  size_t const length = lengthOfCharacter(text);
  std::string_view const character = text.substr(0, length);
  if (length == 0) {
    json += kReplacement;
  } else if (length == 1 || steersTerminal(character)) {
    appendEscape(json, character);
  } else {
    json += character;
  }
  return std::max<size_t>(length, 1);
}

}  // namespace

void appendJsonText(std::string& json, std::string_view text) {
  json += '"';
  while (true) {
    size_t const plain = findMarked(text, markSpecial);
    json += text.substr(0, plain);
    text.remove_prefix(plain);
    if (text.empty()) break;
    text.remove_prefix(appendCharacter(json, text));
  }
  json += '"';
}

}  // namespace oxdiagview
