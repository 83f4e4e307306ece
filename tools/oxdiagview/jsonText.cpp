#include "oxdiagview/jsonText.h"

#include <algorithm>
#include <cstdio>

#include "options/utf8Text.h"

namespace oxdiagview {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

bool isPlain(char character) {
  unsigned char const byte = static_cast<unsigned char>(character);
  return byte >= ' ' && byte < 0x7F && byte != '"' && byte != '\\';
}

// Looks at all, since few texts have another: that is faster than to stop at the first.
bool areAllPlain(std::string_view text) {
  unsigned int others = 0;
  for (char const character : text) others |= isPlain(character) ? 0 : 1;
  return others == 0;
}

void appendEscape(std::string& json, std::string_view character) {
  char escape[16];
  if (character == "\"" || character == "\\") {
    json += '\\';
    json += character;
  } else {
    std::snprintf(escape, sizeof(escape), "\\u%04X", codeOf(character));
    json += escape;
  }
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
  if (areAllPlain(text)) {
    json += text;
    text = {};
  }
  while (!text.empty()) {
    auto const end = std::find_if_not(text.begin(), text.end(), isPlain);
    size_t const plain = static_cast<size_t>(end - text.begin());
    json += text.substr(0, plain);
    text.remove_prefix(plain);
    if (!text.empty()) text.remove_prefix(appendCharacter(json, text));
  }
  json += '"';
}

}  // namespace oxdiagview
