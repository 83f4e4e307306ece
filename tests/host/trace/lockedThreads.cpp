// Lines of several threads with the line mutex on.

#include <atomic>
#include <set>
#include <thread>

#include "keptLines.h"
#include "oxdiagk/tBlockTracer.h"
#include "startedModules.h"

namespace {

using nOXDIAG100::tBlockTracer;
using nOXDIAG100::tTrace;

constexpr int kThreadCount = 2;
constexpr int kLineCount = 2'000;

void putLine(tTrace& trace, int thread, int line) {
  trace.putPrefix("test", tSSVersion(), 1, "a/file.cpp", 100, tTrace::kTraceLine);
  trace.put("thread ").put(thread, 10).put(" line ").put(line, 10).put(" says ");
  for (int index = 0; index < 20; ++index) trace.put(static_cast<char>('a' + thread));
  trace.endl();
}

std::string expectedLine(int thread, int line) {
  return "thread " + std::to_string(thread) + " line " + std::to_string(line) + " says " +
         std::string(20, static_cast<char>('a' + thread)) + "\n";
}

std::string withoutPrefix(std::string const& line) {
  size_t const end = line.find("] ");
  return end == std::string::npos ? "no prefix: " + line : line.substr(end + 2);
}

template <class Work>
void putInThreads(Work work) {
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreadCount; ++thread) threads.emplace_back(work, thread);
  for (std::thread& thread : threads) thread.join();
}

}  // namespace

TEST(TraceThreads, LinesArriveWholeAndInTheOrderOfTheirThread) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  trace.configure("--mutex on --timestamp on --timedelta on --threadid on");
  putInThreads([&](int thread) {
    for (int line = 0; line < kLineCount; ++line) putLine(trace, thread, line);
  });
  ASSERT_EQ(kept.pieces.size(), static_cast<size_t>(kThreadCount * kLineCount));
  int next[kThreadCount] = {};
  for (std::string const& piece : kept.pieces) {
    int const thread = withoutPrefix(piece)[7] - '0';
    ASSERT_TRUE(thread == 0 || thread == 1) << piece;
    ASSERT_EQ(withoutPrefix(piece), expectedLine(thread, next[thread]));
    ++next[thread];
  }
}

TEST(TraceThreads, LongLinesOfDifferentThreadsDoNotMix) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  trace.configure("--mutex on");
  putInThreads([&](int thread) {
    for (int line = 0; line < 200; ++line) {
      trace.putPrefix("test", tSSVersion(), 1, "file", 100, tTrace::kTraceLine);
      trace.put(std::string(700, static_cast<char>('a' + thread)).c_str()).endl();
    }
  });
  ASSERT_EQ(kept.pieces.size(), size_t{kThreadCount * 200 * 3});
  for (size_t index = 0; index < kept.pieces.size(); index += 3) {
    std::string const line =
        withoutPrefix(kept.pieces[index]) + kept.pieces[index + 1] + kept.pieces[index + 2];
    ASSERT_EQ(line, std::string(700, line[0]) + "\n");
  }
}

TEST(TraceThreads, OpenBlockDoesNotKeepOtherThreadsFromWriting) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  trace.configure("--mutex on --prefixwidth 0 --compname off --linenumber off --filename off");
  char name[] = "work";
  {
    tBlockTracer const block(name, tSSVersion(), 1, name, 100, name, nullptr,
                             static_cast<i32*>(nullptr), trace);
    std::thread([&] { putLine(trace, 1, 2); }).join();
  }
  EXPECT_EQ(kept.text(), "work; {\n  " + expectedLine(1, 2) + "} work\n");
}

TEST(TraceThreads, SwitchingTheMutexWaitsForTheLineOfAnotherThread) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  trace.enableMutex();
  std::atomic<bool> lineIsOpen = false;
  std::atomic<bool> lineIsEnded = false;
  std::thread writer([&] {
    trace.putPrefix("test", tSSVersion(), 1, "file", 100, tTrace::kTraceLine);
    lineIsOpen = true;
    // Time for the other thread to come too early, if it can.
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    lineIsEnded = true;
    trace.endl();
  });
  while (!lineIsOpen) std::this_thread::yield();
  trace.disableMutex();
  EXPECT_TRUE(lineIsEnded);
  writer.join();
}

TEST(TraceThreads, EnablingTheMutexWaitsForNoLineThatWasOpenedWithoutIt) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  trace.enableMutex();
  trace.disableMutex();
  std::atomic<int> step = 0;
  std::thread writer([&] {
    trace.putPrefix("test", tSSVersion(), 1, "file", 100, tTrace::kTraceLine);
    step = 1;
    while (step != 2) std::this_thread::yield();
    trace.endl();
  });
  while (step != 1) std::this_thread::yield();
  trace.enableMutex();
  EXPECT_EQ(trace.mutexIsEnabled(), 1u);
  step = 2;
  writer.join();
}

TEST(TraceThreads, EndWithoutPrefixDoesNotReleaseTheLineOfAnotherThread) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  trace.configure("--mutex on --prefixwidth 0");
  std::atomic<int> step = 0;
  std::thread owner([&] {
    trace.putPrefix("test", tSSVersion(), 1, "file", 100, tTrace::kTraceLine);
    step = 1;
    while (step != 2) std::this_thread::yield();
    trace.put("owner").endl();
  });
  while (step != 1) std::this_thread::yield();
  trace.endl();
  step = 2;
  owner.join();
  EXPECT_EQ(kept.text(), "\nowner\n");
}
