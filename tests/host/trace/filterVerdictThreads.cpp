// Lines that are judged while another thread changes the filter.

#include <gtest/gtest.h>

#include <atomic>

#include "keptLines.h"
#include "oxdiagk/tTraceFilter.h"
#include "racingThreads.h"
#include "rounds.h"

using nOXDIAG100::tTraceFilter;

namespace {

constexpr u32 kLinesOpened = roundsOf(16'000'000);

void openLines(tOwnTrace& trace) {
  nOXDIAG100::tLineOrigin const origin{"rack", "rack.cpp", tSSVersion(), 7};
  for (u32 round = 0; round < kLinesOpened; ++round) {
    trace.putPrefix("rack", tSSVersion(), 7, "rack.cpp", 50, tOwnTrace::kTraceLine).endl();
    nOXDIAG100::tTrace* const line = trace.openLine(origin, 50);
    if (line != nullptr) line->endl();
  }
}

}  // namespace

TEST(FilterVerdict, ALineThatBothFiltersHideIsHiddenBetweenThem) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  std::atomic<bool> isOver = false;
  std::atomic<bool> isWriter = true;
  u64 changes = 0;
  runAtOnce(2, [&] {
    if (isWriter.exchange(false)) {
      openLines(trace);
      isOver = true;
      return;
    }
    for (; !isOver; ++changes) {
      trace.getFilter()->addTerm("<500", tTraceFilter::kAnd, tTraceFilter::kLineNumber);
      trace.getFilter()->removeField(tTraceFilter::kLineNumber);
    }
  });
  EXPECT_NE(u64{0}, changes);
  EXPECT_EQ(u64{0}, kept.pieces.size());
}
