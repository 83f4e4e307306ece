#include "options/valueForms.h"

#include <algorithm>
#include <cctype>
#include <optional>
#include <utility>

namespace {

constexpr size_t kRootLength = 3;
constexpr size_t kMaxFileNameLength = 127;
constexpr std::string_view kDigits = "0123456789";
constexpr std::string_view kHexadecimalDigits = "0123456789abcdefABCDEF";

bool consistsOf(std::string_view text, std::string_view characters) {
  return !text.empty() && text.find_first_not_of(characters) == std::string_view::npos;
}

uint64_t digitOf(char character) {
  size_t const place = kHexadecimalDigits.find(character);
  return place < kDigits.size() + 6 ? place : place - 6;
}

// The value of digits; nothing when it has more than 64 bits.
std::optional<uint64_t> valueOf(std::string_view digits, uint64_t radix) {
  uint64_t value = 0;
  for (char const digit : digits) {
    if (__builtin_mul_overflow(value, radix, &value)) return std::nullopt;
    if (__builtin_add_overflow(value, digitOf(digit), &value)) return std::nullopt;
  }
  return value;
}

// The radix and the digits of a number word.
struct tNumberParts {
  explicit tNumberParts(std::string_view word) {
    size_t const mark = word.find('#');
    if (word.starts_with("0x")) {
      radix = 16;
      digits = word.substr(2);
    } else if (mark != std::string_view::npos) {
      radix = valueOf(word.substr(0, mark), 10);
      digits = word.substr(mark + 1);
    } else {
      digits = word;
    }
  }

  std::optional<uint64_t> radix = 10;
  std::string_view digits;
};

// Digits below a radix, as far as there are such digits.
bool areDigitsOf(uint64_t radix, std::string_view digits) {
  return radix >= 2 && consistsOf(digits, kDigits.substr(0, std::min<uint64_t>(radix, 10)));
}

// The parts of a token word at its colon; the second is empty when there is none.
std::pair<std::string_view, std::string_view> splitToken(std::string_view word) {
  size_t const colon = word.find(':');
  if (colon == std::string_view::npos) return {word, {}};
  return {word.substr(0, colon), word.substr(colon + 1)};
}

}  // namespace

bool isNumberWord(std::string_view word) {
  tNumberParts const parts(word);
  if (word.starts_with("0x")) return consistsOf(parts.digits, kHexadecimalDigits);
  size_t const mark = word.find('#');
  if (mark == std::string_view::npos) return consistsOf(word, kDigits);
  return consistsOf(word.substr(0, mark), kDigits) &&
         areDigitsOf(parts.radix.value_or(kLargestMeasured), parts.digits);
}

bool isNumberAtMost(std::string_view word, uint64_t limit) {
  tNumberParts const parts(word);
  if (!parts.radix || *parts.radix > std::max<uint64_t>(limit, kLargestNumber)) return false;
  auto const value = valueOf(parts.digits, *parts.radix);
  return value && *value <= limit;
}

bool isTokenWord(std::string_view word) {
  auto const [first, second] = splitToken(word);
  return isNumberWord(first) && isNumberWord(second);
}

bool isTokenInRange(std::string_view word) {
  auto const [first, second] = splitToken(word);
  return isNumberAtMost(first, kLargestNumber) && isNumberAtMost(second, kLargestNumber);
}

bool isFileNameWord(std::string_view word) {
  if (word.size() <= kRootLength || word.size() > kMaxFileNameLength) return false;
  bool const hasLetter = std::isalpha(static_cast<unsigned char>(word[0])) != 0;
  return hasLetter && word[1] == ':' && (word[2] == '/' || word[2] == '\\');
}
