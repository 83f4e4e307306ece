#include "oxdiagview/tPrefixText.h"

#include <algorithm>

#include "options/byteWords.h"

namespace oxdiagview {
namespace {

constexpr std::string_view kSeparator = "--";
constexpr size_t kMostDigits = 20;  // of 64 bits in decimal

bool isDigit(char character) {
  return character >= '0' && character <= '9';
}

bool isUpperHex(char character) {
  return isDigit(character) || (character >= 'A' && character <= 'F');
}

bool isLetter(char character) {
  return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

size_t countDigits(std::string_view text) {
  return static_cast<size_t>(std::find_if_not(text.begin(), text.end(), isDigit) - text.begin());
}

// Such as 1.0.0f7.
bool isVersion(std::string_view part) {
  for (int number = 0; number < 3; ++number) {
    size_t const digits = countDigits(part);
    if (digits == 0 || digits == part.size()) return false;
    if ((number < 2) != (part[digits] == '.')) return false;
    if (number == 2 && !isLetter(part[digits])) return false;
    part.remove_prefix(digits + 1);
  }
  return !part.empty() && countDigits(part) == part.size();
}

bool isHexadecimal(std::string_view part) {
  if (!part.starts_with("0x")) return false;
  part.remove_prefix(2);
  return part.size() <= 16 && std::all_of(part.begin(), part.end(), isUpperHex);
}

// With a folder, or an ending as those of sources.
bool isFileName(std::string_view part) {
  if (part.find('/') != part.npos || part.find('\\') != part.npos) return true;
  size_t const dot = part.rfind('.');
  if (dot == part.npos || dot == 0) return false;
  std::string_view const ending = part.substr(dot + 1);
  return !ending.empty() && ending.size() <= 4 && isLetter(ending[0]);
}

uint64_t markControls(uint64_t word) {
  return (word - eightOf(' ')) & ~word;
}

// At the end, eight at a time: most of a prefix may be padding.
std::string_view withoutDashes(std::string_view text) {
  while (text.ends_with("--------")) text.remove_suffix(8);
  return text.substr(0, text.find_last_not_of('-') + 1);
}

// Or the end.
size_t findSeparator(std::string_view content) {
  for (size_t place = content.find('-'); place != content.npos;
       place = content.find('-', place + 1)) {
    if (content.substr(place, kSeparator.size()) == kSeparator) return place;
  }
  return content.size();
}

}  // namespace

size_t findPrefixEnd(std::string_view line, size_t from, size_t to) {
  std::string_view const head = line.substr(0, to);
  for (size_t place = head.find(']', from); place != head.npos; place = head.find(']', place + 1)) {
    if (place + 1 == line.size()) return place;
    if (line[place + 1] == ' ') return place;
  }
  return head.npos;
}

tLook lookOf(std::string_view part) {
  if (part.empty()) return tLook::kNothing;
  if (isDigit(part[0])) {
    if (part.size() <= kMostDigits && countDigits(part) == part.size()) return tLook::kNumber;
    if (isHexadecimal(part)) return tLook::kHexadecimal;
    if (isVersion(part)) return tLook::kVersion;
  }
  return isFileName(part) ? tLook::kFileName : tLook::kText;
}

bool tPrefixText::read(std::string_view line) {
  if (line.empty() || line[0] != '[') return false;
  size_t const end = findPrefixEnd(line, 0, kMostLength);
  if (end == line.npos) return false;
  length = std::min(end + 2, line.size());
  std::string_view const content = line.substr(1, end - 1);
  std::string_view const used = withoutDashes(content);
  padding = content.size() - used.size();
  return findMarked(used, markControls) == used.size() && cut(used);
}

bool tPrefixText::cut(std::string_view content) {
  count = 0;
  if (content.empty()) return padding != 0;
  for (;;) {
    if (count == kMostParts) return false;
    size_t const end = findSeparator(content);
    std::string_view const part = content.substr(0, end);
    if (part.starts_with(' ') || part.ends_with(' ')) return false;
    parts[count] = part;
    looks[count++] = lookOf(part);
    if (end == content.size()) return true;
    content.remove_prefix(end + kSeparator.size());
  }
}

bool tPrefixText::isSure() const {
  if (padding >= kSeparator.size()) return true;
  if (count < 2) return false;
  return std::any_of(looks.begin(), looks.begin() + static_cast<ptrdiff_t>(count),
                     [](tLook look) { return look > tLook::kText; });
}

bool tPrefixText::joinTexts() {
  for (size_t index = 1; index < count; ++index) {
    bool const areTexts = looks[index - 1] <= tLook::kFileName && looks[index] <= tLook::kFileName;
    if (!areTexts) continue;
    char const* const begin = parts[index - 1].data();
    char const* const end = parts[index].data() + parts[index].size();
    parts[index - 1] = std::string_view(begin, static_cast<size_t>(end - begin));
    looks[index - 1] = lookOf(parts[index - 1]);
    for (--count; index < count; ++index) {
      parts[index] = parts[index + 1];
      looks[index] = looks[index + 1];
    }
    return true;
  }
  return false;
}

uint32_t tPrefixText::getSignature() const {
  uint32_t signature = 1;
  for (size_t index = 0; index < count; ++index) {
    signature = signature << kBitsOfALook | static_cast<uint32_t>(looks[index]);
  }
  return signature;
}

}  // namespace oxdiagview
