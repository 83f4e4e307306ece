// The filter and the number reader against a plain model of each, over random input.

#include <gtest/gtest.h>

#include "config/options/numberText.h"
#include "filterModel.h"
#include "oxdiagk/tTraceFilter.h"
#include "randomFilters.h"
#include "rounds.h"
#include "writtenFilter.h"

namespace {

using nOXDIAG100::readNumber;
using nOXDIAG100::tTraceFilter;

constexpr int kExpressions = roundsOf(120'000);
constexpr int kNoises = roundsOf(240'000);
constexpr int kSequences = roundsOf(80'000);
constexpr int kStepsOfASequence = 6;
constexpr int kLines = 4;
constexpr int kNumbers = roundsOf(1'600'000);

std::string told(tModelLine const& line) {
  return "component " + line.component + " version " + line.version + " line " +
         std::to_string(line.line) + " file " + line.file + " thread " +
         std::to_string(line.threadId) + " verbosity " + std::to_string(line.verbosity);
}

struct tPair {
  tTraceFilter filter;
  tModelFilter model;

  tPair() { model.add(">=100", 0, 5); }

  void parse(std::string const& expression) {
    filter.parseExpression(expression.c_str());
    model.parse(expression);
  }

  // In what the two differ; empty when in nothing that was looked at.
  std::string difference(tRandomFilters& random) const {
    std::string const seen = writtenFilter(filter);
    std::string const wanted = model.written();
    if (seen != wanted) return "written as " + seen + " instead of " + wanted;
    if (filter.isEmpty() != wanted.empty()) return "isEmpty";
    for (int index = 0; index < kLines; ++index) {
      tModelLine const line = random.line();
      if (showsLine(filter, line) != model.shows(line)) return told(line);
    }
    return "";
  }
};

void changeByChance(tPair& pair, tRandomFilters& random) {
  unsigned const kind = random.below(10);
  if (kind < 5) {
    std::string const expression = random.expression();
    pair.parse(expression);
  } else if (kind < 8) {
    std::string const text = random.fieldTerm();
    unsigned const connector = random.below(3);
    int const field = static_cast<int>(random.below(7)) - 1;
    pair.filter.addTerm(text.c_str(), connector, field);
    pair.model.add(text, connector, field);
  } else if (kind == 8) {
    int const field = static_cast<int>(random.below(6));
    pair.filter.removeField(field);
    pair.model.removeField(field);
  } else if (random.below(4) == 0) {
    pair.filter.removeAll();
    pair.model.removeAll();
  }
}

}  // namespace

TEST(FilterAgainstModel, ExpressionsBuildTheSameFilter) {
  tRandomFilters random(1);
  int shown = 0;
  for (int round = 0; round < kExpressions; ++round) {
    std::string const expression = random.expression();
    tPair pair;
    pair.parse(expression);
    ASSERT_EQ(pair.difference(random), "") << "expression \"" << expression << "\"";
    shown += pair.model.shows(random.line()) ? 1 : 0;
  }
  // Input that shows everything or nothing would compare nothing.
  EXPECT_GT(shown, kExpressions / 10);
  EXPECT_LT(shown, kExpressions / 10 * 9);
}

TEST(FilterAgainstModel, NoiseBuildsTheSameFilter) {
  tRandomFilters random(2);
  for (int round = 0; round < kNoises; ++round) {
    std::string const expression = random.noise();
    tPair pair;
    pair.parse(expression);
    ASSERT_EQ(pair.difference(random), "") << "expression \"" << expression << "\"";
  }
}

TEST(FilterAgainstModel, SequencesOfChangesBuildTheSameFilter) {
  tRandomFilters random(3);
  for (int round = 0; round < kSequences; ++round) {
    tPair pair;
    for (int step = 0; step < kStepsOfASequence; ++step) {
      changeByChance(pair, random);
      ASSERT_EQ(pair.difference(random), "") << "round " << round << ", step " << step;
    }
  }
}

TEST(FilterAgainstModel, NumbersReadTheSame) {
  tRandomFilters random(4);
  for (int round = 0; round < kNumbers; ++round) {
    std::string const text = random.numberText();
    ASSERT_EQ(readNumber(text.c_str()), modelNumber(text)) << "text \"" << text << "\"";
    size_t const length = random.below(static_cast<unsigned>(text.size()) + 1);
    ASSERT_EQ(readNumber(text.data(), length), modelNumber(text.substr(0, length)))
        << length << " bytes of \"" << text << "\"";
  }
}
