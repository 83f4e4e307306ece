#include "trace/modelWords.h"

bool isModelBlank(char character) {
  return std::string(" \t\n\v\f\r").find(character) != std::string::npos;
}

tWords modelWords(std::string const& text) {
  enum { kBetween, kPlain, kQuoted } state = kBetween;
  tWords words;
  for (char const character : text) {
    if (state == kBetween) {
      if (isModelBlank(character)) continue;
      words.emplace_back(character == '"' ? "" : std::string(1, character));
      state = character == '"' ? kQuoted : kPlain;
    } else if (state == kQuoted ? character == '"' : isModelBlank(character)) {
      state = kBetween;
    } else {
      words.back() += character;
    }
  }
  return words;
}
