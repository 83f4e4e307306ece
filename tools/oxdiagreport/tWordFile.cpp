#include "oxdiagreport/tWordFile.h"

#include <charconv>
#include <optional>

using nTRANSLATORS100::tEnumWord;
using nTRANSLATORS100::tVocabulary;
using nTRANSLATORS100::tWord;

namespace {

constexpr std::string_view kBlanks = " \t";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::string_view withoutBlanks(std::string_view text) {
  size_t const first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) + 1 - first);
}

// Takes the first field from the front of the text, and the blanks behind it.
std::string_view takeField(std::string_view& text) {
  std::string_view const field = text.substr(0, text.find_first_of(kBlanks));
  text = withoutBlanks(text.substr(field.size()));
  return field;
}

std::optional<i32> takeNumber(std::string_view& text) {
  std::string_view const field = takeField(text);
  i32 number = 0;
  char const* const end = field.data() + field.size();
  auto const [stop, error] = std::from_chars(field.data(), end, number);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

// The characters that a first byte of UTF-8 announces behind it; none for a byte that is no first.
std::optional<u32> followersOf(u8 byte) {
  if (byte < 0x80) return 0;
  if (byte >= 0xC2 && byte < 0xE0) return 1;
  if (byte >= 0xE0 && byte < 0xF0) return 2;
  if (byte >= 0xF0 && byte < 0xF5) return 3;
  return std::nullopt;
}

// Takes one character from the front of the text; nothing when it does not begin with one.
std::optional<u32> takeCharacter(std::string_view& text) {
  constexpr u32 kLeast[] = {0, 0x80, 0x800, 0x10000};
  constexpr u8 kMasks[] = {0x7F, 0x1F, 0x0F, 0x07};
  u8 const first = static_cast<u8>(text[0]);
  auto const followers = followersOf(first);
  if (!followers || text.size() <= *followers) return std::nullopt;
  u32 character = first & kMasks[*followers];
  for (u32 index = 1; index <= *followers; ++index) {
    u8 const byte = static_cast<u8>(text[index]);
    if ((byte & 0xC0) != 0x80) return std::nullopt;
    character = character << 6 | (byte & 0x3F);
  }
  bool const isHalfPair = character >= 0xD800 && character < 0xE000;
  if (character < kLeast[*followers] || character > 0x10FFFF || isHalfPair) return std::nullopt;
  text.remove_prefix(1 + *followers);
  return character;
}

std::optional<std::vector<wchar_t>> wideOf(std::string_view utf8) {
  std::vector<wchar_t> text;
  while (!utf8.empty()) {
    auto const character = takeCharacter(utf8);
    if (!character) return std::nullopt;
    if (*character >= 0x10000) {
      text.push_back(static_cast<wchar_t>(0xD800 + ((*character - 0x10000) >> 10)));
      text.push_back(static_cast<wchar_t>(0xDC00 + (*character & 0x3FF)));
    } else {
      text.push_back(static_cast<wchar_t>(*character));
    }
  }
  text.push_back(L'\0');
  return text;
}

bool fail(std::string const& reason, std::string& problem) {
  problem = reason;
  return false;
}

template <class tKey>
bool addOnce(std::map<tKey, wchar_t const*>& words, tKey key, wchar_t const* text,
             std::string& problem) {
  if (!words.emplace(key, text).second) return fail("this number has a word already", problem);
  return true;
}

}  // namespace

bool tWordFile::add(std::string_view text, std::string& problem) {
  current = nullptr;
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  for (u32 number = 1; !text.empty(); ++number) {
    std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(text.size(), line.size() + 1));
    if (line.ends_with('\r')) line.remove_suffix(1);
    line = withoutBlanks(line);
    if (line.empty() || line.starts_with('#') || addLine(line, problem)) continue;
    problem.insert(0, "line " + std::to_string(number) + ": ");
    return false;
  }
  for (auto& [name, component] : components) makeTables(component);
  return true;
}

bool tWordFile::addLine(std::string_view line, std::string& problem) {
  std::string_view rest = line;
  std::string_view const kind = takeField(rest);
  if (kind == "component") {
    if (rest.empty()) return fail("the name of the component is missing", problem);
    current = &components[std::string(rest)];
    return true;
  }
  if (kind != "usage" && kind != "property" && kind != "value") {
    return fail("a line begins with component, usage, property, value or #", problem);
  }
  if (current == nullptr) return fail("words follow a line 'component NAME'", problem);
  return addWord(kind, rest, problem);
}

bool tWordFile::addWord(std::string_view kind, std::string_view rest, std::string& problem) {
  auto const number = takeNumber(rest);
  auto const value = kind == "value" ? takeNumber(rest) : std::optional<i32>(0);
  if (!number || !value) return fail("a number is missing, or has no 32 bits", problem);
  if (rest.empty()) return fail("the word is missing", problem);
  wchar_t const* const text = keep(rest, problem);
  if (text == nullptr) return false;
  if (kind == "usage") return addOnce(current->usageTypes, *number, text, problem);
  if (kind == "property") return addOnce(current->properties, *number, text, problem);
  return addOnce(current->values, {*number, *value}, text, problem);
}

wchar_t const* tWordFile::keep(std::string_view word, std::string& problem) {
  auto text = wideOf(word);
  bool const hasEnd = word.find('\0') != std::string_view::npos;
  if (!text || hasEnd) problem = "the word is no UTF-8 text";
  if (!text || hasEnd) return nullptr;
  texts.push_back(std::move(*text));
  return texts.back().data();
}

void tWordFile::makeTables(tComponent& component) {
  component.usageTable.clear();
  component.propertyTable.clear();
  component.valueTable.clear();
  for (auto const& [number, text] : component.usageTypes) {
    component.usageTable.push_back({number, text});
  }
  for (auto const& [number, text] : component.properties) {
    component.propertyTable.push_back({number, text});
  }
  for (auto const& [numbers, text] : component.values) {
    component.valueTable.push_back({numbers.first, numbers.second, text});
  }
}

tVocabulary tWordFile::find(std::string_view component) const {
  auto const found = components.find(component);
  if (found == components.end()) return tVocabulary();
  tComponent const& words = found->second;
  return tVocabulary({words.usageTable.data(), words.usageTable.size()},
                     {words.propertyTable.data(), words.propertyTable.size()},
                     {words.valueTable.data(), words.valueTable.size()});
}
