// Lines within lines, of several threads at once.

#include <algorithm>
#include <random>
#include <thread>
#include <vector>

#include "keptLines.h"
#include "startedModules.h"

namespace {

using nOXDIAG100::iTraceDestination;
using nOXDIAG100::tTrace;

constexpr int kThreads = 4;
constexpr unsigned kShown = 100;
constexpr unsigned kHidden = 99;
constexpr unsigned kMostNested = 4;

// Takes texts of any number of threads and keeps none.
class tNowhere : public tKeptLines {
 public:
  iTraceDestination& put(char const*) override { return *this; }
  iTraceDestination& put(char const*, unsigned int) override { return *this; }
};

// Lines of one thread, within each other at random, and what should arrive of them.
class tWriter {
 public:
  tWriter(tTrace& trace, int number)
      : trace(trace), name(1, static_cast<char>('a' + number)), random(static_cast<u32>(number)) {}

  void run(int lines) {
    for (int line = 0; line < lines; ++line) writeLine(0);
  }

  std::vector<std::string> expected;

 private:
  void writeLine(unsigned depth) {
    bool const isShown = random() % 2 != 0;
    trace.putPrefix("test", tSSVersion(), 1, "file", isShown ? kShown : kHidden,
                    tTrace::kTraceLine);
    put(isShown);
    while (depth < kMostNested && random() % 3 == 0) {
      writeLine(depth + 1);
      put(isShown);
    }
    trace.endl();
    if (isShown) arrive("\n");
  }

  void put(bool isShown) {
    std::string const text = name + (isShown ? "+" : "-");
    trace.put(text.c_str());
    if (isShown) arrive(text);
  }

  void arrive(std::string const& text) {
    pending += text;
    if (text != "\n") return;
    expected.push_back(pending);
    pending.clear();
  }

  tTrace& trace;
  std::string const name;
  std::mt19937 random;
  std::string pending;
};

template <class Work>
void writeInThreads(Work work) {
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) threads.emplace_back(work, thread);
  for (std::thread& thread : threads) thread.join();
}

}  // namespace

TEST(LinesWithinThreads, WithTheMutexOnEveryThreadsLinesArriveAsIfItWereAlone) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  trace.configure("--mutex on --prefixwidth 0");
  std::vector<tWriter> writers;
  for (int number = 0; number < kThreads; ++number) writers.emplace_back(trace, number);
  writeInThreads([&](int number) { writers[static_cast<size_t>(number)].run(2'000); });
  size_t count = 0;
  for (int number = 0; number < kThreads; ++number) {
    std::vector<std::string> const& expected = writers[static_cast<size_t>(number)].expected;
    std::vector<std::string> found;
    for (std::string const& piece : kept.pieces) {
      if (piece[0] == 'a' + number) found.push_back(piece);
    }
    EXPECT_EQ(found, expected);
    count += found.size();
  }
  EXPECT_GT(count, 1'000u);
  EXPECT_EQ(count + static_cast<size_t>(std::count(kept.pieces.begin(), kept.pieces.end(), "\n")),
            kept.pieces.size());
}

TEST(LinesWithinThreads, WithoutTheMutexNoHiddenLineStaysBehind) {
  tNowhere nowhere;
  tOwnTrace trace(nowhere);
  trace.configure("--prefixwidth 0");
  for (int round = 0; round < 200; ++round) {
    writeInThreads([&](int number) { tWriter(trace, number).run(20); });
    ASSERT_TRUE(trace.isLineShown()) << round;
  }
}
