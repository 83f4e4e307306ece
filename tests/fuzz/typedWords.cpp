// What somebody types or another program hands on to the tools: option words, one a line, which are
// also filters, rates and times.

#include <vector>

#include "options/filterCheck.h"
#include "options/optionText.h"
#include "options/tOptionCheck.h"
#include "options/utf8Text.h"
#include "options/valueForms.h"
#include "oxdiagview/startTime.h"
#include "oxdiagview/tickRate.h"
#include "support/fuzzing.h"
#include "support/steering.h"

namespace {

constexpr size_t kMostSentence = 400;         // bytes; what was typed is cut in it
constexpr u64 kYear2500 = 16'725'225'600ull;  // in seconds since 1970
constexpr u64 kNanoseconds = 1'000'000'000;   // in a second
constexpr u64 kMostTicks = 10'000'000'000;    // in a second

std::vector<std::string> linesOf(std::string const& input) {
  std::vector<std::string> lines;
  for (size_t begin = 0; begin <= input.size();) {
    size_t const end = std::min(input.find('\n', begin), input.size());
    lines.push_back(input.substr(begin, end - begin));
    begin = end + 1;
  }
  return lines;
}

void demandSentence(std::optional<std::string> const& problem) {
  if (!problem) return;
  demandNoSteering(*problem);
  demand(
      !problem->empty() && problem->size() <= kMostSentence && problem->find('\n') == problem->npos,
      "a problem is a short sentence", [&] { return readable(*problem); });
}

void demandJoined(std::vector<std::string> const& words) {
  auto const text = joinOptionWords(words);
  demand(!text || splitOptionText(*text) == words, "joined words are cut as they were",
         [&] { return readable(*text); });
  std::string all;
  for (std::string const& word : words) all += word + ' ';
  auto const again = joinOptionWords(splitOptionText(all));
  demand(!again || splitOptionText(*again) == splitOptionText(all), "a text is cut as it is joined",
         [&] { return readable(all); });
}

// Of a number that is too large for 64 bits nothing is at most anything.
void demandNumber(std::string const& word) {
  bool const isSmall = isNumberAtMost(word, kLargestNumber);
  demand(!isNumberWord(word) || !isSmall || isNumberAtMost(word, kLargestMeasured),
         "a small number is no large one", [&] { return readable(word); });
  demand(!isTokenInRange(word) || !isTokenWord(word) || word.find(':') != word.npos,
         "a token has a colon", [&] { return readable(word); });
}

void demandTime(std::string const& word) {
  auto const start = oxdiagview::readStartTime(word);
  demand(!start || *start < kYear2500 * kNanoseconds, "a time is before the year 2500",
         [&] { return readable(word); });
  auto const rate = oxdiagview::readTickRate(word);
  demand(!rate || (*rate >= 1 && *rate <= kMostTicks), "a rate is one",
         [&] { return readable(word); });
}

void demandShown(std::string const& word) {
  std::string shown;
  appendForTerminal(shown, word);
  demandNoSteering(shown);
  demand(shown.find('\n') == shown.npos, "a line is one", [&] { return readable(shown); });
}

}  // namespace

void fuzzInput(std::string const& input) {
  std::vector<std::string> const words = linesOf(input);
  demandSentence(tOptionCheck(kTraceLanguage, words).findProblem());
  demandSentence(tOptionCheck(kAssertLanguage, words).findProblem());
  demandJoined(words);
  for (std::string const& word : words) {
    demandSentence(findFilterProblem(word));
    demandSentence(findTermProblem(word, true));
    demandNumber(word);
    demandTime(word);
    demandShown(word);
  }
}
