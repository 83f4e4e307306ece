// The written form of a filter, parsed again, gives the same filter.
//
// The exceptions, each with a test below:
//   - a term without operator, unless its value begins with an operator character that keeps it
//     apart from the field name (as in compname=abc);
//   - a value that is empty or holds a blank, "|" or "&" behind its first operator characters:
//     only a word behind a field switch can give a term such a value;
//   - a value of operator characters alone, which an expression has no value behind, and a ">" or
//     "<" whose value begins with "=", which reads as ">=" or "<=";
//   - an empty filter, whose written form is nothing, which changes nothing.

#include <gtest/gtest.h>

#include "filterModel.h"
#include "oxdiagk/tTraceFilter.h"
#include "randomFilters.h"
#include "rounds.h"
#include "writtenFilter.h"

namespace {

using nOXDIAG100::tTraceFilter;

constexpr int kRounds = roundsOf(100'000);

// The written form behind one more trip through the parser.
std::string writtenAgain(tTraceFilter const& filter) {
  tTraceFilter other;
  other.parseExpression(writtenExpression(filter).c_str());
  return writtenFilter(other);
}

std::string writtenAgain(char const* text, i32 field) {
  tTraceFilter filter;
  filter.removeAll();
  filter.addTerm(text, tTraceFilter::kAnd, field);
  return writtenAgain(filter);
}

}  // namespace

TEST(FilterRoundTrip, WrittenFormsAreParsedToTheSameFilter) {
  tRandomFilters random(5);
  int compared = 0;
  for (int round = 0; round < kRounds; ++round) {
    std::string const expression = random.expression();
    tTraceFilter filter;
    tModelFilter model;
    model.add(">=100", 0, 5);
    filter.parseExpression(expression.c_str());
    model.parse(expression);
    if (!model.isWritable() || filter.isEmpty()) continue;
    tTraceFilter again;
    again.parseExpression(writtenExpression(filter).c_str());
    ASSERT_EQ(writtenFilter(again), writtenFilter(filter)) << "expression \"" << expression << "\"";
    tModelLine const line = random.line();
    ASSERT_EQ(showsLine(again, line), showsLine(filter, line))
        << "expression \"" << expression << "\"";
    ++compared;
  }
  EXPECT_GT(compared, kRounds / 4);
}

TEST(FilterRoundTrip, TermsBehindFieldSwitchesAreParsedToTheSameFilter) {
  tRandomFilters random(6);
  int compared = 0;
  for (int round = 0; round < kRounds; ++round) {
    tTraceFilter filter;
    tModelFilter model;
    model.add(">=100", 0, 5);
    std::string const text = random.fieldTerm();
    int const field = static_cast<int>(random.below(6));
    filter.addTerm(text.c_str(), tTraceFilter::kAnd, field);
    model.add(text, 1, field);
    ASSERT_EQ(writtenAgain(filter) == writtenFilter(filter), model.isWritable())
        << "field " << field << ", term \"" << text << "\"";
    compared += model.isWritable() ? 1 : 0;
  }
  EXPECT_GT(compared, kRounds / 4);
  EXPECT_LT(compared, kRounds);
}

TEST(FilterRoundTrip, ATermWithoutOperatorIsLost) {
  EXPECT_EQ(writtenAgain("abc", tTraceFilter::kComponentName), "");
  EXPECT_EQ(writtenAgain("=5", tTraceFilter::kVerbosity), "");
}

TEST(FilterRoundTrip, ATermWithoutOperatorBehindAnOperatorCharacterStays) {
  EXPECT_EQ(writtenAgain("=abc", tTraceFilter::kComponentName), " --filter \"compname=abc\"");
}

TEST(FilterRoundTrip, AnEmptyValueIsLost) {
  EXPECT_EQ(writtenAgain("==", tTraceFilter::kComponentName), "");
}

TEST(FilterRoundTrip, AValueEndsAtABlankABarAndAnAmpersand) {
  EXPECT_EQ(writtenAgain("==a|b", tTraceFilter::kComponentName), "");
  EXPECT_EQ(writtenAgain("==a&b", tTraceFilter::kComponentName), "");
  EXPECT_EQ(writtenAgain("==a b", tTraceFilter::kComponentName), "");
}

TEST(FilterRoundTrip, AValueThatReadsAsPartOfTheOperatorChangesIt) {
  tTraceFilter filter;
  filter.removeAll();
  filter.addTerm("> =a", tTraceFilter::kAnd, tTraceFilter::kComponentName);
  EXPECT_EQ(writtenFilter(filter), " --filter \"compname>=a\"");
  EXPECT_TRUE(filter.evaluate("a", "", 0, "", 0, 0));  // "a" > "=a"
  filter.parseExpression(writtenExpression(filter).c_str());
  EXPECT_FALSE(filter.evaluate("=a", "", 0, "", 0, 0));
}

TEST(FilterRoundTrip, AnEmptyFilterLeavesTheOneThatReadsIt) {
  tTraceFilter empty;
  empty.removeAll();
  EXPECT_EQ(writtenAgain(empty), " --filter \"verbosity>=100\"");
}
