// A filter that is changed while a line is judged, in every order of the two threads.

#include "oxdiagk/tTraceFilter.h"

#include "ntoshost/pool.h"
#include "schedules/tExplorer.h"

namespace {

using nOXDIAG100::tTraceFilter;

// Whatever the filter is at the moment, the empty one in between included, the line passes it.
class tPassedLine {
 public:
  static constexpr unsigned kThreads = 2;

  tPassedLine() { filter.parseExpression("compname==rack"); }

  void run(unsigned thread) {
    if (thread == 0) {
      isShown = filter.evaluate("rack", "", 7, "", 1, 100);
    } else {
      filter.parseExpression("verbosity>=100 && compname==rack");
    }
  }
  void finish() { EXPECT_TRUE(isShown); }

 private:
  tTraceFilter filter;
  bool isShown = false;
};

// Each of the filters hides the line. What was removed meanwhile is released by the next change.
class tHiddenLine {
 public:
  static constexpr unsigned kThreads = 2;

  void run(unsigned thread) {
    if (thread == 0) {
      isShown = !filter.isSurelyHidden(50) && filter.evaluate("rack", "", 7, "", 1, 50);
    } else {
      filter.addTerm("<500", tTraceFilter::kAnd, tTraceFilter::kLineNumber);
      filter.removeField(tTraceFilter::kLineNumber);
    }
  }
  void finish() {
    EXPECT_FALSE(isShown);
    filter.addTerm("<500", tTraceFilter::kAnd, tTraceFilter::kLineNumber);
    EXPECT_EQ(ntoshost::outstandingBlocks(), blocks + 1);
  }

 private:
  tTraceFilter filter;
  u64 const blocks = ntoshost::outstandingBlocks();
  bool isShown = false;
};

}  // namespace

TEST(FilterSchedules, ALineThatEveryFilterShowsIsShownBetweenThem) {
  explore<tPassedLine>("filterPassed", {tReach::kExhaustive, 0});
}

TEST(FilterSchedules, ALineThatBothFiltersHideIsHiddenBetweenThem) {
  explore<tHiddenLine>("filterHidden", {tReach::kExhaustive, 0});
}
