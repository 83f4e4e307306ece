// Formatted text where the host shows more than a driver could: floating-point arguments, and that
// nothing is allocated.

#include "keptLines.h"
#include "ntoshost/faults.h"
#include "startedModules.h"

namespace {

std::string longText(size_t length) {
  return std::string(length, 'x');
}

}  // namespace

// x86-64 passes them in registers of their own, so the next conversion takes the next integer.
TEST(Putf, FloatingPointArgumentsAreNotSeenByOtherConversions) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  trace.putf("%f %d %s", 1.5, 7, "seven").endl();
  EXPECT_EQ(kept.text(), "<<'f' not supported>> 7 seven\n");
}

TEST(Putf, WidthOfAFloatingPointConversionIsTakenFromTheIntegers) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  trace.putf("%*.*f %d", 5, 2, 1.5, 7).endl();
  EXPECT_EQ(kept.text(), "<<'f' not supported>> 7\n");
}

TEST(Putf, NothingIsAllocated) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  std::string const text = longText(3000);
  ntoshost::watchCalls(ntoshost::kFaultMemory);
  trace.putf("%d %s %ls %f %#x", 1, "two", L"three", 4.0, 5);
  trace.putf("%2000d%s", 1, text.c_str()).putf("%q").endl();
  EXPECT_EQ(ntoshost::fallibleCallsSeen(), 0u);
  ntoshost::clearFaults();
  EXPECT_GE(kept.pieces.size(), 5u);
}

TEST(Putf, EveryLengthOfTextIsWhollyWrittenOrCut) {
  static std::string const warning = "!!!Formatted string exceeds kMaxTraceLine characters!!!!";
  for (size_t length = 0; length <= 2100; ++length) {
    tKeptLines kept;
    tOwnTrace trace(kept);
    trace.putf("%s", longText(length).c_str()).endl();
    std::string const wanted = length < 1024 ? longText(length) : warning + longText(1023);
    ASSERT_EQ(kept.text(), wanted + "\n") << length << " characters";
  }
}
