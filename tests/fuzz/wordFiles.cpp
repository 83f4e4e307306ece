// Files of words that nobody wrote. What a good one says is found again, and a bad one is told with
// a line that it has.

#include "oxdiagreport/tWordFile.h"

#include <algorithm>

#include "support/fuzzing.h"
#include "support/tExactText.h"

namespace {

void demandProblem(std::string const& problem, std::string const& input) {
  std::string const begin = "line ";
  size_t const lines = 1 + static_cast<size_t>(std::count(input.begin(), input.end(), '\n'));
  size_t const line = problem.starts_with(begin) ? std::stoul(problem.substr(begin.size())) : 0;
  demand(line >= 1 && line <= lines, "a problem is in a line of the file", [&] { return problem; });
}

}  // namespace

void fuzzInput(std::string const& input) {
  tExactText exact(input, false);
  std::string_view const text(exact.get(), input.size());
  tWordFile words;
  std::string problem;
  if (!words.add(text, problem)) return demandProblem(problem, input);
  demand(problem.empty(), "good words have no problem", [&] { return problem; });
  for (i32 number : {-61007, 0, 1, 5}) {
    auto const vocabulary = words.find("c");
    vocabulary.findUsageType(number);
    vocabulary.findProperty(number);
    vocabulary.findEnumValue(5, number);
  }
  tWordFile again;
  demand(again.add(text, problem), "a good text stays good", [&] { return problem; });
}
