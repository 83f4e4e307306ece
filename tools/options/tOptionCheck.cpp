#include "options/tOptionCheck.h"

#include <algorithm>

#include "options/filterCheck.h"
#include "options/nearestWord.h"
#include "options/quotedWord.h"
#include "options/valueForms.h"

namespace {

constexpr int kCalibrationNumbers = 3;
constexpr uint32_t kMostRecorderKiB = 16384;
constexpr uint32_t kWidestPrefix = 4096;  // characters; beyond it a line is nothing but prefix
constexpr std::string_view kNeedsQuotes =
    "; an expression with blanks needs double quotes around it";

std::string join(std::string_view first, std::string_view second) {
  return std::string(first).append(second);
}

}  // namespace

tOptionCheck::tRule const tOptionCheck::kRules[] = {
    &tOptionCheck::readNothing,     &tOptionCheck::readSwitch,      &tOptionCheck::readTextField,
    &tOptionCheck::readNumberField, &tOptionCheck::readWidth,       &tOptionCheck::readFilter,
    &tOptionCheck::readDestination, &tOptionCheck::readCalibration, &tOptionCheck::readTokens,
    &tOptionCheck::readCategory};

tOptionCheck::tOptionCheck(tOptionLanguage const& language, std::vector<std::string> const& words)
    : known(language), next(words.begin()), end(words.end()) {
}

std::optional<std::string> tOptionCheck::findProblem() {
  while (!problem && next != end) readOption(*next++);
  return problem;
}

void tOptionCheck::readOption(std::string const& word) {
  if (tOption const* const option = findOption(known, word)) {
    (this->*kRules[static_cast<size_t>(option->rule)])(*option);
    return;
  }
  tOptionLanguage const& other =
      known.name == kTraceLanguage.name ? kAssertLanguage : kTraceLanguage;
  if (findOption(other, word) != nullptr) {
    refuse(word, join("belongs to ", other.name).append(", not to ").append(known.name));
  } else {
    refuse(word, "is no option", getOptionWords());
  }
}

void tOptionCheck::readNothing(tOption const& option) {
  refuseMore(option.word);
}

// The library would take any word for "on", here or as the next option.
void tOptionCheck::readSwitch(tOption const& option) {
  if (!hasValue()) return;
  std::string const& word = *next++;
  if (word == "on" || word == "off") return;
  tCandidates candidates = getOptionWords();
  candidates.insert(candidates.begin(), {"on", "off"});
  refuse(word, join(option.word, " is neither on nor off").insert(0, "behind "), candidates);
}

void tOptionCheck::readTextField(tOption const& option) {
  readField(option, false);
}

void tOptionCheck::readNumberField(tOption const& option) {
  readField(option, true);
}

void tOptionCheck::readField(tOption const& option, bool isNumber) {
  if (!hasValue() || next->find_first_of("=!<>") != 0) {
    readSwitch(option);
  } else if (auto const found = findTermProblem(*next++, isNumber)) {
    problem = "the term " + *found;
  }
}

void tOptionCheck::readWidth(tOption const& option) {
  if (!hasValue()) {
    problem = join(option.word, " needs a number");
  } else if (!isNumberWord(*next)) {
    refuse(*next, join("is no number for ", option.word));
  } else if (!isNumberAtMost(*next, kWidestPrefix)) {
    refuse(*next, "is above " + std::to_string(kWidestPrefix) + ", the widest prefix");
  } else {
    ++next;
    refuseMore(option.word);
  }
}

void tOptionCheck::readFilter(tOption const&) {
  if (!hasValue()) return;
  if (auto const found = findFilterProblem(*next++)) {
    problem = "in the filter, " + *found;
    if (hasValue()) problem->append(kNeedsQuotes);
  } else if (hasValue()) {
    refuse(*next, std::string("cannot follow the filter").append(kNeedsQuotes));
  }
}

void tOptionCheck::readDestination(tOption const& option) {
  if (next == end) return;
  if (!hasValue()) return refuse(*next, join("is swallowed by the nameless ", option.word));
  std::string const& name = *next++;
  if (name == "vex") return refuseMore("the debugger print");
  if (name == "serial") return readBaudRates();
  if (name == "file") return readFileWords();
  if (name == "recorder") return readRecorderWords();
  tCandidates names;
  for (tDestinationName const& destination : kDestinationNames) names.push_back(destination.word);
  refuse(name, "is no destination (vex, serial, file, recorder)", names);
}

void tOptionCheck::readBaudRates() {
  tCandidates const rates(kBaudRates.begin(), kBaudRates.end());
  for (; !problem && hasValue(); ++next) {
    bool const isRate = std::find(rates.begin(), rates.end(), *next) != rates.end();
    if (!isRate) refuse(*next, "is no baud rate of the serial port", rates);
  }
}

void tOptionCheck::readFileWords() {
  for (; !problem && hasValue(); ++next) {
    if (*next == "overwrite" || *next == "append" || isFileNameWord(*next)) continue;
    refuse(*next,
           "is neither overwrite nor append nor a name of 127 characters at most such as "
           "C:/rack.out",
           {"overwrite", "append"});
  }
}

void tOptionCheck::readRecorderWords() {
  for (; !problem && hasValue(); ++next) {
    if (*next == "vex") continue;
    if (isNumberWord(*next) && isNumberAtMost(*next, kMostRecorderKiB) && *next != "0") continue;
    refuse(*next, "is neither vex nor a number of KiB from 1 to 16384", {"vex"});
  }
}

// A text that the library gives as its settings has the measured values here.
void tOptionCheck::readCalibration(tOption const& option) {
  for (int count = 0; count < kCalibrationNumbers && hasValue() && isNumberWord(*next); ++count) {
    if (!isNumberAtMost(*next, kLargestMeasured)) {
      return refuse(*next, "has a number of more than 64 bits");
    }
    ++next;
  }
  refuseMore(option.word);
}

void tOptionCheck::readTokens(tOption const& option) {
  if (next == end) problem = join(option.word, " needs a token such as 5:0");
  for (; !problem && next != end; ++next) {
    if (isTokenWord(*next) && isTokenInRange(*next)) continue;
    refuse(*next,
           isTokenWord(*next)
               ? "has a number of more than 32 bits"
               : join("is no token such as 5:0, as which every word is read behind ", option.word));
  }
}

void tOptionCheck::readCategory(tOption const& option) {
  if (next == end) {
    problem = join(option.word, " needs the name of a category");
  } else if (hasValue()) {
    ++next;
    refuseMore("the name of a category");
  } else {
    refuse(*next, join("is swallowed by the nameless ", option.word));
  }
}

bool tOptionCheck::hasValue() const {
  return next != end && !next->starts_with("--");
}

tOptionCheck::tCandidates tOptionCheck::getOptionWords() const {
  tCandidates words;
  for (tOption const& option : known.options) words.push_back(option.word);
  return words;
}

void tOptionCheck::refuse(std::string_view word, std::string_view sentencePart,
                          tCandidates const& candidates) {
  problem = quoteWord(word).append(" ").append(sentencePart);
  std::string_view const nearest = findNearestWord(word, candidates);
  if (!nearest.empty()) problem->append(", perhaps ").append(nearest);
}

void tOptionCheck::refuseMore(std::string_view what) {
  if (hasValue()) refuse(*next, join("cannot follow ", what));
}
