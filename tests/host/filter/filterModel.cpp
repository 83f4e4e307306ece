#include "filterModel.h"

#include <algorithm>

namespace {

std::string const kBlanks = " \t\n\v\f\r";
std::string const kOperatorCharacters = "=!><";
char const* const kNames[] = {"compname", "compver",  "linenumber",
                              "filename", "threadid", "verbosity"};
constexpr int kMatchingOrder[] = {2, 0, 1, 3, 5, 4};

std::string behindBlanks(std::string const& text) {
  size_t const begin = text.find_first_not_of(kBlanks);
  return begin == std::string::npos ? "" : text.substr(begin);
}

int fieldOf(std::string const& word) {
  if (word.empty()) return -1;
  for (int const field : kMatchingOrder) {
    if (std::string_view(kNames[field]).starts_with(word)) return field;
  }
  return -1;
}

std::string operatorOf(std::string const& text) {
  for (char const* two : {"==", "!=", ">=", "<="}) {
    if (text.starts_with(two)) return two;
  }
  if (text.starts_with(">") || text.starts_with("<")) return text.substr(0, 1);
  return "";
}

template <class T>
bool satisfies(std::string const& operation, T const& left, T const& right) {
  if (operation == "==") return left == right;
  if (operation == "!=") return left != right;
  if (operation == ">") return left > right;
  if (operation == "<") return left < right;
  if (operation == ">=") return left >= right;
  return left <= right;
}

// Text as it compares: unsigned bytes.
std::basic_string<unsigned> bytes(std::string const& text) {
  std::basic_string<unsigned> all;
  for (char const character : text) all += static_cast<unsigned char>(character);
  return all;
}

uint32_t digits(std::string_view text, uint64_t radix, std::string_view alphabet) {
  uint64_t number = 0;
  for (char const character : text) {
    size_t const digit = alphabet.find(character);
    if (digit == std::string_view::npos) break;
    uint64_t const worth = digit < 16 ? digit : digit - 6;
    if (worth >= radix) break;
    number = (number * radix + worth) & 0xFFFFFFFF;
  }
  return static_cast<uint32_t>(number);
}

}  // namespace

uint32_t modelNumber(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
  if (text.starts_with("0x")) return digits(text.substr(2), 16, "0123456789abcdefABCDEF");
  size_t const mark = text.find_first_not_of("0123456789");
  uint32_t const number = digits(text, 10, "0123456789");
  bool const hasRadix = mark != std::string_view::npos && text[mark] == '#';
  return hasRadix ? digits(text.substr(mark + 1), number, "0123456789") : number;
}

void tModelFilter::parse(std::string text) {
  for (text = behindBlanks(text); !text.empty(); text = behindBlanks(text)) {
    unsigned const connector = text.starts_with("&&") ? 1 : (text.starts_with("||") ? 2 : 0);
    if (connector == 0) terms.clear();
    text = behindBlanks(connector == 0 ? text : text.substr(2));
    size_t const wordEnd = text.find_first_of(kBlanks + kOperatorCharacters);
    if (wordEnd == std::string::npos) return;
    std::string const rest = behindBlanks(text.substr(wordEnd));
    size_t const operatorEnd = rest.find_first_not_of(kOperatorCharacters);
    if (operatorEnd == std::string::npos) return;
    size_t const valueBegin = rest.find_first_not_of(kBlanks, operatorEnd);
    if (valueBegin == std::string::npos) return;
    size_t const valueEnd = std::min(rest.find_first_of(kBlanks + "|&", valueBegin), rest.size());
    if (valueEnd == valueBegin) return;
    add(rest.substr(0, valueEnd), connector, fieldOf(text.substr(0, wordEnd)));
    text = rest.substr(valueEnd);
  }
}

void tModelFilter::add(std::string text, unsigned connector, int field) {
  if (field == -1) return;
  std::string const operation = operatorOf(text);
  std::string value = behindBlanks(text.substr(operation.size()));
  if (field == 2 || field == 5) value = std::to_string(modelNumber(value));
  terms.push_back({terms.empty() ? 0 : connector, field, operation, value});
}

void tModelFilter::removeField(int field) {
  std::erase_if(terms, [field](tTerm const& term) { return term.field == field; });
  if (!terms.empty()) terms.front().connector = 0;
}

bool tModelFilter::compare(tTerm const& term, tModelLine const& line) {
  switch (term.field) {
    case 0:
      return satisfies(term.operation, bytes(line.component), bytes(term.value));
    case 1:
      return satisfies(term.operation, bytes(line.version), bytes(term.value));
    case 2:
      return satisfies(term.operation, line.line, modelNumber(term.value));
    case 3:
      return satisfies(term.operation, bytes(line.file), bytes(term.value));
    case 4:
      return satisfies(term.operation, line.threadId, modelNumber(term.value));
    default:
      return satisfies(term.operation, line.verbosity, modelNumber(term.value));
  }
}

bool tModelFilter::shows(tModelLine const& line) const {
  bool result = true;
  bool outcome = false;
  for (tTerm const& term : terms) {
    if (!term.operation.empty()) outcome = compare(term, line);
    if (term.connector == 0) result = outcome;
    if (term.connector == 1) result = result && outcome;
    if (term.connector == 2) result = result || outcome;
  }
  return result;
}

std::string tModelFilter::written() const {
  if (terms.empty()) return "";
  std::string text = " --filter \"";
  for (tTerm const& term : terms) {
    text += term.connector == 0 ? "" : (term.connector == 1 ? " && " : " || ");
    text += kNames[term.field] + term.operation + term.value;
  }
  return text + "\"";
}

bool tModelFilter::isWritable(tTerm const& term) {
  std::string const text = term.operation + term.value;
  size_t const operatorEnd = text.find_first_not_of(kOperatorCharacters);
  if (operatorEnd == std::string::npos || operatorEnd == 0) return false;
  size_t const valueBegin = text.find_first_not_of(kBlanks, operatorEnd);
  if (valueBegin == std::string::npos || operatorOf(text) != term.operation) return false;
  return text.find_first_of(kBlanks + "|&", valueBegin) == std::string::npos;
}

bool tModelFilter::isWritable() const {
  return std::all_of(terms.begin(), terms.end(),
                     [](tTerm const& term) { return isWritable(term); });
}
