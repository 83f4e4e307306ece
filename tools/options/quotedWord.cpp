#include "options/quotedWord.h"

namespace {
constexpr size_t kMaxShownLength = 60;
}

std::string quoteWord(std::string_view word) {
  std::string shown = "'";
  for (char const character : word.substr(0, kMaxShownLength)) {
    shown += character >= ' ' && character <= '~' ? character : '?';
  }
  return shown + (word.size() > kMaxShownLength ? "...'" : "'");
}
