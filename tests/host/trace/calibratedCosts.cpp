// What a calibration measures, by a counter that is read as the test says.

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/prctl.h>
#include <ucontext.h>

#include <array>
#include <memory>

#include "capturedPrint.h"
#include "oxdiagk/tTrace.h"
#include "startedModules.h"
#include "support/recordingDestination.h"

extern "C" char __executable_start;
extern "C" char etext;

namespace {

using nOXDIAG100::tLineClock;
using nOXDIAG100::tTrace;

constexpr u64 kReading = 1'000;  // ticks that two readings in a row are apart
constexpr u64 kOther = 7;        // and two that nothing is measured between
constexpr u64 kInterrupt = 60'000;
constexpr int kReadingsOfATry = 8;  // the baseline, a block's beginning and end, a line
constexpr int kTries = 2 * 25;

// The counter of this thread while an object of this class lives: each reading by this program is
// behind the one before by what `ticksBehind` says for its place in a try. What others read, such
// as the C library, is the processor's.
class tScriptedCounter {
 public:
  explicit tScriptedCounter(std::array<u64, 3> ticks) : ticks(ticks) {
    current = this;
    struct sigaction action = {};
    action.sa_sigaction = &answer;
    action.sa_flags = SA_SIGINFO;
    sigaction(SIGSEGV, &action, &before);
    isTrapping = prctl(PR_SET_TSC, PR_TSC_SIGSEGV) == 0;
  }
  ~tScriptedCounter() {
    prctl(PR_SET_TSC, PR_TSC_ENABLE);
    sigaction(SIGSEGV, &before, nullptr);
    current = nullptr;
  }
  tScriptedCounter(tScriptedCounter const&) = delete;
  tScriptedCounter& operator=(tScriptedCounter const&) = delete;

  bool isTrapping = false;
  int readings = 0;
  bool isInterrupted = false;  // every other try

 private:
  static void answer(int /*signal*/, siginfo_t* /*information*/, void* context) {
    auto& registers = static_cast<ucontext_t*>(context)->uc_mcontext.gregs;
    auto const* const instruction = reinterpret_cast<unsigned char const*>(registers[REG_RIP]);
    bool const isOfProgram = registers[REG_RIP] >= reinterpret_cast<greg_t>(&__executable_start) &&
                             registers[REG_RIP] < reinterpret_cast<greg_t>(&etext);
    u64 const value = isOfProgram ? current->read() : readProcessor();
    registers[REG_RAX] = static_cast<greg_t>(value & 0xFFFFFFFF);
    registers[REG_RDX] = static_cast<greg_t>(value >> 32);
    registers[REG_RIP] += instruction[1] == 0x31 ? 2 : 3;  // rdtsc, rdtscp
  }

  static u64 readProcessor() {
    prctl(PR_SET_TSC, PR_TSC_ENABLE);
    u64 const value = __builtin_ia32_rdtsc();
    prctl(PR_SET_TSC, PR_TSC_SIGSEGV);
    return value;
  }

  u64 read() { return now += ticksBehind(readings++); }

  u64 ticksBehind(int reading) const {
    int const place = reading % kReadingsOfATry;
    bool const isLong = isInterrupted && reading / kReadingsOfATry % 2 == 0;
    if (place % 2 == 0) return kOther;
    return kReading + (isLong ? kInterrupt : 0) +
           (place > 1 ? ticks[static_cast<size_t>(place) / 2 - 1] : 0);
  }

  static inline tScriptedCounter* current = nullptr;

  struct sigaction before = {};
  std::array<u64, 3> ticks;  // more than a reading: a block's beginning, its end, a line
  u64 now = 1'000'000;
};

class tOpenTrace : public tTrace {
 public:
  explicit tOpenTrace(nOXDIAG100::iTraceDestination& first) : tTrace(first) {}
  std::array<u64, 3> offsets() {
    return {getClock().getOffset(tLineClock::kBlockEntryOffset),
            getClock().getOffset(tLineClock::kBlockExitOffset),
            getClock().getOffset(tLineClock::kLineOffset)};
  }
  u64 end() { return getClock().getEnd(); }
};

class CalibratedCosts : public testing::Test {
 protected:
  // The offsets behind a calibration by such a counter.
  std::array<u64, 3> calibrated(std::array<u64, 3> ticks, bool isInterrupted = false) {
    tScriptedCounter counter(ticks);
    counter.isInterrupted = isInterrupted;
    EXPECT_TRUE(counter.isTrapping);
    trace.calibrate();
    readings = counter.readings;
    return trace.offsets();
  }

  tRecordingDestination recorder;
  tOpenTrace trace{recorder};
  int readings = 0;
};

}  // namespace

TEST_F(CalibratedCosts, AreWhatEachKindOfLineTakesMoreThanAReading) {
  EXPECT_EQ(calibrated({100, 200, 300}), (std::array<u64, 3>{100, 200, 300}));
  EXPECT_EQ(calibrated({1, 0, 999}), (std::array<u64, 3>{1, 0, 999}));
}

TEST_F(CalibratedCosts, AreAtMostThatOfAReading) {
  EXPECT_EQ(calibrated({1'000, 1'001, 5'000}), (std::array<u64, 3>{1'000, 1'000, 1'000}));
}

TEST_F(CalibratedCosts, AreNeverBelowZero) {
  EXPECT_EQ(calibrated({~u64{0}, ~u64{499}, 10}), (std::array<u64, 3>{0, 0, 10}));
}

TEST_F(CalibratedCosts, AnInterruptInOneTryOfTwoDoesNotCount) {
  EXPECT_EQ(calibrated({100, 200, 300}, true), (std::array<u64, 3>{100, 200, 300}));
}

// Behind the tries the last line ends, and the stream's clock goes on from here.
TEST_F(CalibratedCosts, TakeTwoTriesForEachOfTwentyFiveMeasurements) {
  calibrated({100, 200, 300});
  EXPECT_EQ(readings, kTries * kReadingsOfATry + 2);
}

TEST_F(CalibratedCosts, TheDeltaOfTheNextLineBeginsBehindThem) {
  tScriptedCounter counter({100, 200, 300});
  trace.calibrate();
  EXPECT_EQ(trace.end(),
            1'000'000 + kTries * (4 * kReading + 4 * kOther + 600) + kOther + kReading);
}

TEST_F(CalibratedCosts, WhileDeltasAreShownTheClockGoesOnFromTheLastLine) {
  trace.enableTimeDelta();
  u64 const before = trace.end();
  calibrated({100, 200, 300});
  EXPECT_EQ(trace.end(), before);
}

TEST_F(CalibratedCosts, NobodySeesTheirLines) {
  tCapturedPrint const print;
  trace.calibrate();
  EXPECT_EQ(print.text(), "");
  EXPECT_STREQ(recorder.text(), "");
}

TEST_F(CalibratedCosts, TheOptionMeasuresThem) {
  tScriptedCounter counter({100, 200, 300});
  static_cast<nOXDIAG100::tConfigurable&>(trace).configure("--calibrate");
  EXPECT_EQ(trace.offsets(), (std::array<u64, 3>{100, 200, 300}));
}

TEST_F(CalibratedCosts, AnyOtherOptionDoesNot) {
  tScriptedCounter counter({100, 200, 300});
  static_cast<nOXDIAG100::tConfigurable&>(trace).configure("--timestamp --calibrated");
  EXPECT_EQ(trace.offsets(), (std::array<u64, 3>{0, 0, 0}));
}

// Though the saved configuration says "--calibrate".
TEST_F(CalibratedCosts, AreNotMeasuredAtTheEndOfAStream) {
  auto ending = std::make_unique<tOpenTrace>(recorder);
  ending->pushConfiguration();
  tScriptedCounter const counter({100, 200, 300});
  ending.reset();
  EXPECT_LT(counter.readings, kTries);
}
