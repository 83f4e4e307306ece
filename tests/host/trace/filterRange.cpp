// A filter of one term on the verbosity is also kept as a range of verbosities, by which most lines
// are judged. The range says what the term says, at the ends of the numbers above all.

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "keptLines.h"
#include "oxdiagk/tTraceFilter.h"
#include "trace/tTraceFilterLine.h"
#include "trace/tTraceFilterShortForm.h"
#include "trace/tTraceFilterTerm.h"

using nOXDIAG100::tTraceFilter;
using nOXDIAG100::tTraceFilterLine;
using nOXDIAG100::tTraceFilterShortForm;
using nOXDIAG100::tTraceFilterTerm;

namespace {

constexpr u32 kGreatest = 0xFFFFFFFF;

bool isSatisfied(std::string const& operation, u32 left, u32 right) {
  if (operation == "==") return left == right;
  if (operation == "!=") return left != right;
  if (operation == ">") return left > right;
  if (operation == "<") return left < right;
  if (operation == ">=") return left >= right;
  return left <= right;
}

// A filter that is one term on the verbosity.
struct tVerbosityFilter : tTraceFilter {
  explicit tVerbosityFilter(std::string const& term) {
    removeAll();
    addTerm(term.c_str(), kFirst, kVerbosity);
  }

  bool isSurelyShown(u32 verbosity) const { return judge(verbosity) == kShown; }

  bool isShown(u32 verbosity) const {
    return evaluate("rack", "1.0.0", 7, "rack.cpp", 1, verbosity);
  }
};

std::vector<u32> neighboursOf(u32 number) {
  return {0,          1,          2,          number - 2,    number - 1,    number,   number + 1,
          number + 2, 0x7FFFFFFF, 0x80000000, kGreatest - 2, kGreatest - 1, kGreatest};
}

}  // namespace

TEST(FilterRange, EachOperatorHoldsAtTheEndsOfTheNumbers) {
  for (std::string const operation : {"==", "!=", ">", "<", ">=", "<="}) {
    for (u32 const number : {u32{0}, u32{1}, u32{100}, 0x7FFFFFFFu, 0x80000000u, kGreatest - 2,
                             kGreatest - 1, kGreatest}) {
      std::string const term = operation + std::to_string(number);
      tVerbosityFilter const filter(term);
      for (u32 const verbosity : neighboursOf(number)) {
        bool const wanted = isSatisfied(operation, verbosity, number);
        EXPECT_EQ(wanted, filter.isShown(verbosity)) << term << " of " << verbosity;
        EXPECT_FALSE(wanted && filter.isSurelyHidden(verbosity)) << term << " of " << verbosity;
        EXPECT_FALSE(!wanted && filter.isSurelyShown(verbosity)) << term << " of " << verbosity;
      }
    }
  }
}

// Nothing is no range; whatever else one term says, is one.
TEST(FilterRange, EveryTermThatShowsANumberIsARange) {
  for (std::string const term :
       {"==0", "!=0", ">0", "<=0", "==4294967295", "!=4294967295", "<4294967295", ">=4294967295",
        ">=1", "<1", "!=4294967294", ">=0", "<=4294967295"}) {
    tVerbosityFilter const filter(term);
    for (u32 const verbosity : neighboursOf(0)) {
      EXPECT_NE(filter.isSurelyHidden(verbosity), filter.isSurelyShown(verbosity)) << term;
    }
  }
}

TEST(FilterRange, ATermOfAnotherFieldOrWithoutOperatorIsNoRange) {
  tVerbosityFilter filter("=5");
  EXPECT_FALSE(filter.isShown(5));
  filter.removeAll();
  EXPECT_TRUE(filter.isShown(0));
  filter.addTerm(">=100", tTraceFilter::kFirst, tTraceFilter::kLineNumber);
  EXPECT_FALSE(filter.isShown(kGreatest));
  EXPECT_FALSE(filter.isSurelyHidden(0) || filter.isSurelyShown(kGreatest));
}

TEST(FilterRange, ASecondTermEndsTheRangeAndItsRemovalBringsItBack) {
  tVerbosityFilter filter(">=100");
  EXPECT_TRUE(filter.isSurelyHidden(99) && filter.isSurelyShown(100));
  filter.addTerm("<500", tTraceFilter::kAnd, tTraceFilter::kLineNumber);
  EXPECT_FALSE(filter.isSurelyHidden(99) || filter.isSurelyShown(100));
  filter.removeField(tTraceFilter::kLineNumber);
  EXPECT_TRUE(filter.isSurelyHidden(99) && filter.isSurelyShown(100));
}

namespace {

// The short form of one term, by itself: as it judges a line beside a change of the filter, while
// there is no range.
bool isShownByForm(char const* text, i32 field, u32 line, u32 verbosity) {
  tTraceFilterTerm* const term =
      tTraceFilterTerm::create(text, strlen(text), tTraceFilter::kFirst, field);
  tTraceFilterShortForm const form(tTraceFilterShortForm(term, true).getWord());
  EXPECT_TRUE(form.isWhole()) << text;
  bool const isShown = form.evaluate(tTraceFilterLine("rack", "1.0.0", line, "", 1, verbosity));
  tTraceFilterTerm::destroy(term);
  return isShown;
}

}  // namespace

TEST(FilterShortForm, ATermOfTheVerbosityLooksAtTheVerbosity) {
  EXPECT_TRUE(isShownByForm(">=100", tTraceFilter::kVerbosity, 7, 100));
  EXPECT_FALSE(isShownByForm(">=100", tTraceFilter::kVerbosity, 700, 99));
}

TEST(FilterShortForm, ATermOfTheLineNumberLooksAtTheLineNumber) {
  EXPECT_TRUE(isShownByForm("<100", tTraceFilter::kLineNumber, 99, 700));
  EXPECT_FALSE(isShownByForm("<100", tTraceFilter::kLineNumber, 100, 7));
}

TEST(FilterShortForm, TheEmptyFilterIsOneWordThatShowsEveryLine) {
  tTraceFilterShortForm const form(nullptr, true);
  EXPECT_EQ(form.getWord(), tTraceFilterShortForm::kEmpty);
  EXPECT_TRUE(form.isWhole());
  EXPECT_TRUE(form.evaluate(tTraceFilterLine("", "", 7, "", 1, 7)));
}
