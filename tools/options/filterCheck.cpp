#include "options/filterCheck.h"

#include <array>
#include <string_view>

#include "options/quotedWord.h"
#include "options/valueForms.h"

namespace {

constexpr std::string_view kBlanks = " \t\n\v\f\r";
constexpr std::array<std::string_view, 6> kFields = {"linenumber", "compname",  "compver",
                                                     "filename",   "verbosity", "threadid"};
constexpr std::array<std::string_view, 6> kOperators = {"==", "!=", ">=", "<=", ">", "<"};

std::string_view trim(std::string_view text) {
  size_t const first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

bool isConnector(std::string_view text, size_t position) {
  std::string_view const two = text.substr(position, 2);
  return two == "&&" || two == "||";
}

size_t findConnector(std::string_view text) {
  size_t position = 0;
  while (position < text.size() && !isConnector(text, position)) ++position;
  return position;
}

bool isField(std::string_view word) {
  for (std::string_view field : kFields) {
    if (!word.empty() && field.starts_with(word)) return true;
  }
  return false;
}

// All field names begin differently enough: l, t and v are the numbers.
bool isNumeric(std::string_view word) {
  return word[0] == 'l' || word[0] == 't' || word[0] == 'v';
}

bool isOperator(std::string_view run) {
  for (std::string_view known : kOperators) {
    if (run == known) return true;
  }
  return false;
}

// `text` is an operator and a value.
char const* findComparisonProblem(std::string_view text, bool isNumber) {
  size_t const runLength = text.find_first_not_of("=!<>");
  std::string_view const run = text.substr(0, runLength);
  if (!isOperator(run)) return " has none of the operators == != > < >= <=";
  std::string_view const value = trim(text.substr(run.size()));
  if (value.empty()) return " has no value";
  if (value.find_first_of(" \t\n\v\f\r|&") != std::string_view::npos) {
    return " goes on behind its value without && or ||";
  }
  if (!isNumber) return nullptr;
  if (!isNumberWord(value)) return " needs a number";
  return isNumberAtMost(value, kLargestNumber) ? nullptr : " has a number of more than 32 bits";
}

char const* findFieldTermProblem(std::string_view term) {
  if (term.empty()) return " has nothing on one side of && or ||";
  std::string_view const field = term.substr(0, term.find_first_of(" \t\n\v\f\r=!<>"));
  if (!isField(field)) return " has no known field (see --help)";
  return findComparisonProblem(trim(term.substr(field.size())), isNumeric(field));
}

std::string describe(std::string_view text, char const* problem) {
  return quoteWord(text).append(problem);
}

}  // namespace

std::optional<std::string> findFilterProblem(std::string const& expression) {
  std::string_view rest = trim(expression);
  if (rest.empty()) return std::nullopt;
  if (isConnector(rest, 0)) rest.remove_prefix(2);
  for (bool isLast = false; !isLast;) {
    size_t const connector = findConnector(rest);
    std::string_view const term = trim(rest.substr(0, connector));
    if (char const* problem = findFieldTermProblem(term)) {
      return describe(term.empty() ? std::string_view(expression) : term, problem);
    }
    isLast = connector == rest.size();
    rest.remove_prefix(isLast ? connector : connector + 2);
  }
  return std::nullopt;
}

std::optional<std::string> findTermProblem(std::string const& term, bool isNumber) {
  char const* const problem = findComparisonProblem(term, isNumber);
  return problem == nullptr ? std::nullopt : std::optional(describe(term, problem));
}
