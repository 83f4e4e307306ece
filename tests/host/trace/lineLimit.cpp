// Lines with a limit, beside a clock and beside other threads.

#include "oxdiagk/tLineLimit.h"

#include <thread>
#include <type_traits>
#include <vector>

#include "keptLines.h"
#include "ntos/time.h"
#include "ntoshost/time.h"
#include "startedModules.h"
#include "tRaisedIrql.h"

#define OXDIAG_COMPONENT "rack"
#define OXDIAG_COMPONENT_VERSION tSSVersion()
#define OXDIAG_TRACE_STREAM trace
#include "oxdiagk/traceMacros.h"

namespace {

using nOXDIAG100::tLineLimit;
using nOXDIAG100::tTrace;

// The clock makes a long jump, and goes on.
void passHours() {
  LARGE_INTEGER countsPerSecond;
  KeQueryPerformanceCounter(&countsPerSecond);
  ntoshost::moveTime(11 * 3600 * countsPerSecond.QuadPart);
  ntoshost::setTimeRate(1);
}

void complain(tTrace& trace, u32 number) {
  OXDIAG_TRACE_AT_MOST(2, 100, put("no reply ").put(number, 10));
}

// Turns its stream off within the put of a text that has the word in it.
class tMutingLines final : public tKeptLines {
 public:
  iTraceDestination& put(char const* text, unsigned int length) override {
    tKeptLines::put(text, length);
    if (pieces.back().find(word) != std::string::npos) stream->disable();
    return *this;
  }

  char const* word = "";
  tTrace* stream = nullptr;
};

template <class tWork>
void runThreads(u32 count, tWork work) {
  std::vector<std::thread> threads;
  for (u32 index = 0; index < count; ++index) threads.emplace_back(work);
  for (std::thread& thread : threads) thread.join();
}

}  // namespace

// To the count of the kernel's counter, which is at the begin of a millisecond first. The first
// test: the rate of the counter is asked for once.
TEST(LineLimit, ASecondIsAThousandMilliseconds) {
  LARGE_INTEGER countsPerSecond;
  ntoshost::setCounterRate(0);
  i64 const now = KeQueryPerformanceCounter(&countsPerSecond).QuadPart;
  i64 const countsPerMillisecond = countsPerSecond.QuadPart / 1000;
  ntoshost::moveTime(countsPerMillisecond - now % countsPerMillisecond);
  tLineLimit limit;
  u32 leftOut = 0;
  EXPECT_TRUE(limit.admit(tLineLimit::kAtMostASecond, 1, leftOut));
  ntoshost::moveTime(countsPerSecond.QuadPart - 1);
  EXPECT_FALSE(limit.admit(tLineLimit::kAtMostASecond, 1, leftOut));
  ntoshost::moveTime(1);
  EXPECT_TRUE(limit.admit(tLineLimit::kAtMostASecond, 1, leftOut));
  EXPECT_EQ(leftOut, 1u);
  ntoshost::setTimeRate(1);
}

TEST(LineLimit, TheNextSecondTellsWhatWasLeftOut) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  trace.setMinPrefixWidth(0);
  ntoshost::setCounterRate(0);  // the counter stands still, so that no second ends by itself
  for (u32 number = 0; number < 14; ++number) complain(trace, number);
  passHours();
  ntoshost::setCounterRate(0);
  for (u32 number = 20; number < 23; ++number) complain(trace, number);
  passHours();
  complain(trace, 30);
  EXPECT_EQ(kept.text(),
            "no reply 0\nno reply 1\n"
            "12 lines left out\nno reply 20\nno reply 21\n"
            "1 line left out\nno reply 30\n");
}

TEST(LineLimit, TheLineAboutOthersHasThePrefixOfItsPlace) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  ntoshost::setCounterRate(0);
  for (u32 round = 0; round < 3; ++round) {
    if (round == 2) passHours();
    OXDIAG_TRACE_AT_MOST(1, 100, put("x"));
  }
  ASSERT_EQ(kept.pieces.size(), 3u);
  std::string const prefix = kept.pieces[0].substr(0, kept.pieces[0].find("x\n"));
  EXPECT_EQ(prefix.size(), 51u);
  EXPECT_EQ(kept.pieces[1], prefix + "1 line left out\n");
  EXPECT_EQ(kept.pieces[2], prefix + "x\n");
}

TEST(LineLimit, LinesThatAreLeftOutLeaveTheLineMutexFree) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  trace.enableMutex();
  for (u32 round = 0; round < 3; ++round) OXDIAG_TRACE_ONCE(100, put("x"));
  std::thread([&trace] { OXDIAG_TRACE(100, put("y")); }).join();
  EXPECT_EQ(kept.pieces.size(), 2u);
}

TEST(LineLimit, AllOfThemWorkAtEveryLevel) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  {
    tRaisedIrql const raised(HIGH_LEVEL);
    OXDIAG_TRACE_ONCE(100, put("a"));
    OXDIAG_TRACE_EVERY(2, 100, put("b"));
    OXDIAG_TRACE_AT_MOST(2, 100, put("c"));
  }
  EXPECT_EQ(kept.pieces.size(), 3u);
}

TEST(LineLimit, ThreadsShareOneFirstLine) {
  constexpr u32 kRounds = 200;
  for (u32 round = 0; round < kRounds; ++round) {
    tLineLimit limit;
    u32 shown = 0;
    runThreads(4, [&] {
      u32 leftOut = 0;
      if (limit.admit(tLineLimit::kOnce, 0, leftOut))
        __atomic_fetch_add(&shown, 1, __ATOMIC_RELAXED);
    });
    ASSERT_EQ(shown, 1u);
  }
}

TEST(LineLimit, ThreadsCountTogether) {
  tLineLimit limit;
  u32 shown = 0;
  runThreads(4, [&] {
    u32 leftOut = 0;
    for (u32 line = 0; line < 25'000; ++line) {
      if (limit.admit(tLineLimit::kEveryNth, 10, leftOut)) {
        __atomic_fetch_add(&shown, 1, __ATOMIC_RELAXED);
      }
    }
  });
  EXPECT_EQ(shown, 10'000u);
}

TEST(LineLimit, ThreadsShareASecondAndNothingIsLostFromTheCount) {
  tLineLimit limit;
  constexpr u32 kSeconds = 20;
  constexpr u32 kThreads = 4;
  constexpr u32 kLines = 1'000;
  constexpr u32 kMost = 7;
  u32 shown = 0;
  u32 told = 0;
  for (u32 second = 0; second < kSeconds; ++second) {
    runThreads(kThreads, [&] {
      for (u32 line = 0; line < kLines; ++line) {
        u32 leftOut = 0;
        if (!limit.admitAt(second * 1000, kMost, leftOut)) continue;
        __atomic_fetch_add(&shown, 1, __ATOMIC_RELAXED);
        __atomic_fetch_add(&told, leftOut, __ATOMIC_RELAXED);
      }
    });
    ASSERT_EQ(shown, (second + 1) * kMost);
  }
  u32 leftOut = 0;
  ASSERT_TRUE(limit.admitAt(kSeconds * 1000, kMost, leftOut));
  EXPECT_EQ(shown + told + leftOut, kSeconds * kThreads * kLines);
}

TEST(LineLimit, ASiteIsInStaticStorageFromTheStart) {
  static constinit tLineLimit limit;
  static_assert(sizeof(limit) == 16 && std::is_trivially_destructible_v<tLineLimit>);
  u32 leftOut = 0;
  EXPECT_TRUE(limit.admit(tLineLimit::kAtMostASecond, 1, leftOut));
}

TEST(LineLimit, AStreamThatIsOffOpensNoLine) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  trace.disable();
  tLineLimit limit;
  nOXDIAG100::tLineOrigin const origin{"rack", "file", tSSVersion(), 1};
  EXPECT_EQ(trace.openLine(origin, 100, limit, tLineLimit::kOnce, 1), nullptr);
  trace.enable();
  EXPECT_EQ(trace.openLine(origin, 100, limit, tLineLimit::kOnce, 1), &trace);
  trace.endl();
}

TEST(LineLimit, AStreamThatIsTurnedOffByTheLineAboutOthersShowsNoMore) {
  tMutingLines muting;
  tOwnTrace trace(muting);
  muting.stream = &trace;
  muting.word = "left out";
  trace.setMinPrefixWidth(0);
  ntoshost::setCounterRate(0);
  for (u32 number = 0; number < 4; ++number) complain(trace, number);
  passHours();
  for (u32 number = 4; number < 6; ++number) complain(trace, number);
  ASSERT_FALSE(muting.pieces.empty());
  EXPECT_NE(muting.text().find("2 lines left out\n"), std::string::npos) << muting.text();
  EXPECT_EQ(muting.text().find("no reply 4"), std::string::npos) << muting.text();
  EXPECT_EQ(trace.isEnabled(), 0u);
}

TEST(LineLimit, AHexadecimalDumpEndsWhereItsStreamIsTurnedOff) {
  tMutingLines muting;
  tOwnTrace trace(muting);
  muting.stream = &trace;
  u8 const bytes[256] = {};
  trace.put(bytes, sizeof(bytes), 1).endl();
  EXPECT_EQ(trace.isEnabled(), 0u);
  EXPECT_EQ(muting.pieces.size(), 1u);
}
