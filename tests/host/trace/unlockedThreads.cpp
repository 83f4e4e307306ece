// Without the line mutex, lines of several threads may mix: a race by design. What must hold is
// that nobody writes beyond the line buffer; the address sanitizer and the pieces that arrive tell.

#include <atomic>

#include "oxdiagk/iTraceDestination.h"
#include "oxdiagk/tTrace.h"
#include "racingThreads.h"
#include "startedModules.h"

namespace {

using nOXDIAG100::iTraceDestination;

// Counts, and keeps nothing that could race.
class tLengthCheck : public nOXDIAG100::iTraceDestination {
 public:
  std::atomic<unsigned> pieces = 0;
  std::atomic<size_t> longest = 0;

  iTraceDestination& put(char const* text) override { return take(strlen(text)); }
  iTraceDestination& put(char const*, unsigned int length) override { return take(length); }
  void configure(int, char** const) override {}
  char* inquire(char* buffer, unsigned int, unsigned int*) override { return buffer; }
  u32 open() override { return 1; }
  void close() override {}
  char const* getDescription() const override { return "length check"; }

 private:
  iTraceDestination& take(size_t length) {
    ++pieces;
    for (size_t seen = longest; length > seen && !longest.compare_exchange_weak(seen, length);) {
    }
    return *this;
  }
};

class tUnlockedTrace : public nOXDIAG100::tTrace {
 public:
  explicit tUnlockedTrace(nOXDIAG100::iTraceDestination& destination) : tTrace(destination) {}
};

}  // namespace

TEST(UnlockedTraceThreads, NeverLeaveTheBuffer) {
  tLengthCheck check;
  tUnlockedTrace trace(check);
  runAtOnce(4, [&] {
    std::string const text(300, 'x');
    for (unsigned line = 0; line < 5'000; ++line) trace.put(text.c_str(), line % 300).endl();
  });
  EXPECT_LE(check.longest, 255u);
  EXPECT_GE(check.pieces, 20'000u);
}
