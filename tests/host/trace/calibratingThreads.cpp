// A stream that one thread calibrates while others switch it, write into it, and judge lines.

#include <atomic>
#include <thread>
#include <vector>

#include "keptLines.h"
#include "oxdiagk/tBlockTracer.h"
#include "startedModules.h"
#include "vexk/threadUtility.h"

namespace {

using nOXDIAG100::tTrace;

constexpr int kCalibrations = 100;

// Calibrates over and over while it lives.
class tCalibrating {
 public:
  explicit tCalibrating(tTrace& trace)
      : thread([this, &trace] {
          for (; !isOver; ++count) trace.calibrate();
        }) {
    waitForMore();
  }
  ~tCalibrating() {
    isOver = true;
    thread.join();
  }

  // Until another calibration has begun and ended.
  void waitForMore() {
    for (int const before = count; count < before + 2;) std::this_thread::yield();
  }

 private:
  std::atomic<bool> isOver = false;
  std::atomic<int> count = 0;
  std::thread thread;
};

tTrace& openLine(tTrace& trace, unsigned int verbosity) {
  return trace.putPrefix("test", tSSVersion(), 1, "file", verbosity, tTrace::kTraceLine);
}

}  // namespace

TEST(CalibratingThreads, WhatIsSwitchedMeanwhileHoldsAfterwards) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  int lost = 0;
  {
    tCalibrating calibrating(trace);
    for (int round = 0; round < kCalibrations; ++round) {
      trace.disable();
      calibrating.waitForMore();
      lost += trace.isEnabled() != 0;
      trace.enable();
      calibrating.waitForMore();
      lost += trace.isEnabled() == 0;
    }
  }
  EXPECT_EQ(lost, 0);
}

TEST(CalibratingThreads, ThePopsOfOthersTakeNoSwitchBack) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  trace.pushConfiguration();
  trace.disable();
  std::thread([&] { trace.calibrate(); }).join();
  EXPECT_EQ(trace.isEnabled(), 0u);
  trace.popConfiguration();
  EXPECT_EQ(trace.isEnabled(), 1u);
}

TEST(CalibratingThreads, TheMasterSwitchIsNeverSeenOff) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  tCalibrating const calibrating(trace);
  int off = 0;
  for (int look = 0; look < 200'000; ++look) off += trace.isEnabled() == 0;
  EXPECT_EQ(off, 0);
}

TEST(CalibratingThreads, EveryLineOfAnotherThreadArrivesWholeAndOnce) {
  for (char const* const mutex : {"--mutex off", "--mutex on"}) {
    tKeptLines kept;
    tOwnTrace trace(kept);
    trace.configure(mutex);
    trace.configure("--prefixwidth 0");
    constexpr int kLines = 20'000;
    {
      tCalibrating const calibrating(trace);
      for (int line = 0; line < kLines; ++line) {
        openLine(trace, 100).put("line ").put(line, 10).put(" of one thread").endl();
      }
    }
    ASSERT_EQ(kept.pieces.size(), size_t{kLines}) << mutex;
    for (int line = 0; line < kLines; ++line) {
      ASSERT_EQ(kept.pieces[static_cast<size_t>(line)],
                "line " + std::to_string(line) + " of one thread\n")
          << mutex;
    }
  }
}

TEST(CalibratingThreads, AHiddenLineOfAnotherThreadLetsNothingThrough) {
  for (char const* const mutex : {"--mutex off", "--mutex on"}) {
    tKeptLines kept;
    tOwnTrace trace(kept);
    trace.configure(mutex);
    tCalibrating const calibrating(trace);
    for (int line = 0; line < 20'000; ++line) openLine(trace, 99).put("a").put("b").put("c").endl();
    ASSERT_EQ(kept.text(), "") << mutex;
  }
}

TEST(CalibratingThreads, BlocksOfAnotherThreadStayAsDeepAsTheyAre) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  tCalibrating const calibrating(trace);
  char name[] = "work";
  int wrong = 0;
  for (int round = 0; round < 2'000; ++round) {
    nOXDIAG100::tBlockTracer const block(name, tSSVersion(), 1, name, 100, name, nullptr,
                                         static_cast<i32*>(nullptr), trace);
    wrong += trace.getNestingLevel() != 1;
  }
  EXPECT_EQ(wrong, 0);
}

// Whatever the filter is at the moment, empty in between included, these lines pass it.
TEST(CalibratingThreads, ALineIsJudgedByItsVersionAndThreadWheneverATermAsksForThem) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  trace.configure("--prefixwidth 0 --filter verbosity>=1");
  std::string const thread = std::to_string(tThreadUtility::getCurrentThreadId());
  std::atomic<bool> isOver = false;
  std::thread configuring([&] {
    while (!isOver) {
      trace.configure(("--filter threadid==" + thread).c_str());
      trace.configure("--filter verbosity>=1");
      trace.configure("--filter compver==1.2.3f45");
      trace.configure("--filter verbosity>=1");
    }
  });
  tSSVersion const version(1, 2, 3, tSSVersion::kPhaseReleased, 45, 0);
  int hidden = 0;
  for (int line = 0; line < 200'000; ++line) {
    trace.putPrefix("test", version, 1, "file", 100, tTrace::kTraceLine);
    hidden += !trace.isLineShown();
    trace.endl();
  }
  isOver = true;
  configuring.join();
  EXPECT_EQ(hidden, 0);
}
