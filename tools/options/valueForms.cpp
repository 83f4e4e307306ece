#include "options/valueForms.h"

#include <cctype>

namespace {

constexpr size_t kRootLength = 3;
constexpr size_t kMaxFileNameLength = 127;
constexpr std::string_view kDigits = "0123456789";
constexpr std::string_view kHexadecimalDigits = "0123456789abcdefABCDEF";

bool consistsOf(std::string_view text, std::string_view characters) {
  return !text.empty() && text.find_first_not_of(characters) == std::string_view::npos;
}

}  // namespace

bool isNumberWord(std::string_view word) {
  if (word.starts_with("0x")) return consistsOf(word.substr(2), kHexadecimalDigits);
  size_t const mark = word.find('#');
  if (mark == std::string_view::npos) return consistsOf(word, kDigits);
  return consistsOf(word.substr(0, mark), kDigits) && consistsOf(word.substr(mark + 1), kDigits);
}

bool isTokenWord(std::string_view word) {
  size_t const colon = word.find(':');
  return colon != std::string_view::npos && isNumberWord(word.substr(0, colon)) &&
         isNumberWord(word.substr(colon + 1));
}

bool isFileNameWord(std::string_view word) {
  if (word.size() <= kRootLength || word.size() > kMaxFileNameLength) return false;
  bool const hasLetter = std::isalpha(static_cast<unsigned char>(word[0])) != 0;
  return hasLetter && word[1] == ':' && (word[2] == '/' || word[2] == '\\');
}
