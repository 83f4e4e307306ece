#include "options/optionText.h"

#include <algorithm>

namespace {

constexpr std::string_view kBlanks = " \t\n\v\f\r";

bool needsQuotes(std::string_view word) {
  return word.empty() || word[0] == '"' || word.find_first_of(kBlanks) != std::string_view::npos;
}

// Takes what stands before one of `ends` from the front of `text`, and with `skips` that end too.
std::string_view takeUntil(std::string_view& text, std::string_view ends, size_t skips) {
  std::string_view const word = text.substr(0, text.find_first_of(ends));
  text.remove_prefix(std::min(text.size(), word.size() + skips));
  return word;
}

}  // namespace

std::vector<std::string> splitOptionText(std::string_view text) {
  std::vector<std::string> words;
  for (;;) {
    text.remove_prefix(std::min(text.size(), text.find_first_not_of(kBlanks)));
    if (text.empty()) return words;
    bool const isQuoted = text[0] == '"';
    if (isQuoted) text.remove_prefix(1);
    words.emplace_back(isQuoted ? takeUntil(text, "\"", 1) : takeUntil(text, kBlanks, 0));
  }
}

std::optional<std::string> joinOptionWords(std::vector<std::string> const& words) {
  std::string text;
  for (std::string const& word : words) {
    bool const isQuoted = needsQuotes(word);
    if (isQuoted && word.find('"') != std::string::npos) return std::nullopt;
    if (!text.empty()) text += ' ';
    text += isQuoted ? '"' + word + '"' : word;
  }
  return text;
}
