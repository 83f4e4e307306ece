#include "oxdiagview/textForms.h"

#include <algorithm>
#include <charconv>

namespace oxdiagview {
namespace {

constexpr std::string_view kStatusHead = "tStatus2 Contents:";
constexpr std::string_view kErrorCode = "\tError Code = ";
constexpr std::string_view kLegend = "tTrace::putPrefixPrototype=[";
constexpr std::string_view kFailed = "ASSERTION FAILED";
constexpr std::string_view kWarning = "ASSERTION WARNING: ";
constexpr std::string_view kFieldEnd = "; ";
constexpr size_t kAddressDigits = 16;

bool takeFront(std::string_view& text, std::string_view word) {
  if (!text.starts_with(word)) return false;
  text.remove_prefix(word.size());
  return true;
}

bool takeBack(std::string_view& text, std::string_view word) {
  if (!text.ends_with(word)) return false;
  text.remove_suffix(word.size());
  return true;
}

// All of `digits`, with a sign or without.
std::optional<int32_t> numberOf(std::string_view digits) {
  int32_t number = 0;
  char const* const end = digits.data() + digits.size();
  auto const read = std::from_chars(digits.data(), end, number);
  if (read.ec != std::errc() || read.ptr != end) return std::nullopt;
  return number;
}

bool isUpperHex(char character) {
  return (character >= '0' && character <= '9') || (character >= 'A' && character <= 'F');
}

bool areUpperHex(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), isUpperHex);
}

// Takes "tStatus=0 " or "tStatus2 code=0 " from the end of what stands before the brace.
bool takeStatusBeforeBrace(std::string_view& text, tRecord& record) {
  std::string_view rest = text;
  if (!takeBack(rest, " ")) return false;
  size_t const equals = rest.rfind('=');
  if (equals == rest.npos) return false;
  auto const number = numberOf(rest.substr(equals + 1));
  rest = rest.substr(0, equals);
  if (!number || (!takeBack(rest, "tStatus2 code") && !takeBack(rest, "tStatus"))) return false;
  if (!rest.empty() && !rest.ends_with(kFieldEnd)) return false;
  record.code = number;
  text = rest;
  return true;
}

// Takes "this=0x7F; " from the end.
void takeObject(std::string_view& text, tRecord& record) {
  constexpr std::string_view kThis = "this=0x";
  size_t const place = text.rfind(kThis);
  if (place == text.npos || !text.ends_with(kFieldEnd)) return;
  std::string_view const digits =
      text.substr(place + kThis.size(), text.size() - place - kThis.size() - kFieldEnd.size());
  bool const isField = place == 0 || text.substr(0, place).ends_with(kFieldEnd);
  if (!isField || !areUpperHex(digits)) return;
  record.object = text.substr(place + kThis.size() - 2, digits.size() + 2);
  text = text.substr(0, place);
}

bool readBlockBegin(tRecord& record) {
  std::string_view text = record.text;
  if (!takeBack(text, "{")) return false;
  tRecord found = record;
  bool const hasStatus = takeStatusBeforeBrace(text, found);
  if (!hasStatus && !text.empty() && !text.ends_with(kFieldEnd)) return false;
  takeObject(text, found);
  takeBack(text, kFieldEnd);
  found.kind = tKind::kBlockBegin;
  found.function = text;
  record = found;
  return true;
}

bool readBlockEnd(tRecord& record) {
  std::string_view text = record.text;
  bool const isEnd = takeFront(text, "} ") || text == "}";
  if (!isEnd) return false;
  record.kind = tKind::kBlockEnd;
  record.function = text == "}" ? std::string_view() : text;
  if (!takeFront(text, "tStatus2 code=") && !takeFront(text, "tStatus=")) return true;
  size_t const end = text.find(kFieldEnd);
  auto const number = numberOf(text.substr(0, end));
  if (end == text.npos || !number) return true;
  record.code = number;
  record.function = text.substr(end + kFieldEnd.size());
  return true;
}

void setAssertion(tRecord& record, std::string_view category, std::string_view message) {
  record.kind = tKind::kAssertion;
  record.category = category;
  record.message = message;
}

bool readAssertion(tRecord& record) {
  std::string_view text = record.text;
  if (takeFront(text, kWarning)) {
    setAssertion(record, "warning", text);
    return true;
  }
  if (!takeFront(text, kFailed)) return false;
  if (takeFront(text, ": ")) {
    setAssertion(record, "default", text);
    return true;
  }
  size_t const end = text.find("): ");
  if (!text.starts_with(" (") || end == text.npos) return false;
  setAssertion(record, text.substr(2, end - 2), text.substr(end + 3));
  return true;
}

bool isDumpRow(std::string_view row) {
  if (row.size() < kAddressDigits + 2 || !areUpperHex(row.substr(0, kAddressDigits))) return false;
  if (row.substr(kAddressDigits, 2) != ": ") return false;
  size_t const characters = row.find(": ", kAddressDigits + 2);
  if (characters == row.npos) return false;
  std::string_view const groups = row.substr(kAddressDigits + 2, characters - kAddressDigits - 2);
  return std::all_of(groups.begin(), groups.end(), [](char character) {
    return isUpperHex(character) || character == 'X' || character == ' ';
  });
}

}  // namespace

void readTextForm(tRecord& record) {
  std::string_view const text = record.text;
  if (text.empty()) return;
  if (text[0] == '}' && readBlockEnd(record)) return;
  if (text.back() == '{' && readBlockBegin(record)) return;
  if (text[0] == 'A' && readAssertion(record)) return;
  if (hasDumpRow(text)) record.kind = tKind::kDump;
  if (legendOf(text)) record.kind = tKind::kLegend;
}

bool beginsStatus(std::string_view line) {
  return line == kStatusHead;
}

bool continuesStatus(std::string_view line) {
  return line.starts_with('\t');
}

std::optional<int32_t> errorCodeOf(std::string_view line) {
  if (!takeFront(line, kErrorCode)) return std::nullopt;
  return numberOf(line);
}

bool hasDumpRow(std::string_view text) {
  for (size_t end = text.find(": "); end != text.npos; end = text.find(": ", end + 1)) {
    if (end >= kAddressDigits && isDumpRow(text.substr(end - kAddressDigits))) return true;
  }
  return false;
}

std::optional<std::string_view> legendOf(std::string_view text) {
  if (!text.starts_with(kLegend)) return std::nullopt;
  std::string_view const names = text.substr(kLegend.size());
  return names.substr(0, names.find(']'));
}

}  // namespace oxdiagview
