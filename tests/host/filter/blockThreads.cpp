// Block tracers on several threads of one stream.

#include <latch>
#include <thread>

#include "oxdiagk/tBlockTracer.h"
#include "trace/keptLines.h"
#include "trace/startedModules.h"

namespace {

using nOXDIAG100::tBlockTracer;
using nOXDIAG100::tTrace;

constexpr int kThreads = 4;
constexpr int kBlocks = 2'000;
constexpr int kPrefixes = 200'000;

char blockComponent[] = "rack";
char blockFile[] = "port.cpp";
char blockName[] = "work";

void traceBlocks(tTrace& trace, int count) {
  for (int block = 0; block < count; ++block) {
    tBlockTracer const outer(blockComponent, tSSVersion(), 1, blockFile, 100, blockName, nullptr,
                             static_cast<i32*>(nullptr), trace);
    tBlockTracer const inner(blockComponent, tSSVersion(), 2, blockFile, 100, blockName, nullptr,
                             static_cast<i32*>(nullptr), trace);
  }
}

[[maybe_unused]] void putPrefixes(tTrace& trace, tTrace::tTraceType type) {
  for (int prefix = 0; prefix < kPrefixes; ++prefix) {
    trace.putPrefix("rack", tSSVersion(), 1, "port.cpp", 100, type);
  }
}

template <class Work>
void traceOnThreads(Work work) {
  std::vector<std::thread> threads;
  std::latch start(kThreads);
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&] {
      start.arrive_and_wait();
      work();
    });
  }
  for (std::thread& thread : threads) thread.join();
}

// The line without what depends on the order of the threads.
std::string withoutIndentation(std::string const& line) {
  return line.substr(std::min(line.find_first_not_of(' '), line.size()));
}

}  // namespace

TEST(BlockThreads, WithTheMutexOnEveryLineIsWhole) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  trace.enableMutex();
  trace.setMinPrefixWidth(0);
  traceOnThreads([&trace] { traceBlocks(trace, kBlocks); });
  ASSERT_EQ(kept.pieces.size(), size_t{4 * kThreads * kBlocks});
  for (std::string const& line : kept.pieces) {
    std::string const text = withoutIndentation(line);
    ASSERT_TRUE(text == "work; {\n" || text == "} work\n") << line;
  }
  EXPECT_EQ(trace.getNestingLevel(), 0);
}

// Without the mutex lines race by design, which the thread sanitizer would rightly report.
#if !defined(__SANITIZE_THREAD__)

TEST(BlockThreads, WithoutTheMutexNoChangeOfTheLevelIsLost) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  trace.disable();
  traceOnThreads([&trace] { putPrefixes(trace, tTrace::kBlockEntry); });
  EXPECT_EQ(trace.getNestingLevel(), kThreads * kPrefixes);
  traceOnThreads([&trace] { putPrefixes(trace, tTrace::kBlockExit); });
  EXPECT_EQ(trace.getNestingLevel(), 0);
}

#endif
