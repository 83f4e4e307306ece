// What the trace stream says about its settings.

#include "conformance/harness.h"
#include "oxdiagk/tTrace.h"
#include "oxdiagk/tVEXTraceDestination.h"
#include "support/recordingDestination.h"
#include "support/traceState.h"

namespace {

using nOXDIAG100::tTrace;
using nOXDIAG100::tVEXTraceDestination;

constexpr char kDefaults[] =
    "--on --destination recording --compname on --compver off --linenumber on --filename on "
    "--filepath off --threadid off --timestamp off --timedelta off --verbosity off --indent on "
    "--truncation on --prefixwidth 50 --filter \"verbosity>=100\" --mutex off --calibrate 0 0 0";

constexpr u32 kNeeded = sizeof(kDefaults);

// A buffer in fixed storage with a margin that must stay untouched.
constinit char inquiryStorage[kNeeded + 64] = {};

char* freshBuffer() {
  __builtin_memset(inquiryStorage, '#', sizeof(inquiryStorage));
  return inquiryStorage;
}

class TraceInquire : public tRecordedStream {};

}  // namespace

TEST_F(TraceInquire, FreshStreamGivesTheDefaults) {
  EXPECT_STREQ(tTraceState(trace).get(), kDefaults);
}

TEST(TraceInquireDestination, DebuggerPrintIsNamedStraightBehindTheMasterSwitch) {
  tPrivateTrace trace(tVEXTraceDestination::getInstance());
  EXPECT_TRUE(tTraceState(trace).beginsWith("--on --destination vex --compname on --compver off"));
}

TEST_F(TraceInquire, EverySettingIsShownInItsPlace) {
  trace.configure(
      "--off --compname off --compver on --linenumber off --filename off --filepath on "
      "--threadid on --timestamp on --timedelta on --verbosity on --indent off "
      "--truncation off --prefixwidth 4294967295 --filter \"line<7 || comp!=x\" "
      "--mutex on");
  EXPECT_STREQ(tTraceState(trace).get(),
               "--off --destination recording --compname off --compver on --linenumber off "
               "--filename off --filepath on --threadid on --timestamp on --timedelta on "
               "--verbosity on --indent off --truncation off --prefixwidth 4294967295 "
               "--filter \"linenumber<7 || compname!=x\" --mutex on --calibrate 0 0 0");
}

TEST_F(TraceInquire, EmptyFilterIsNotMentioned) {
  trace.configure("--filter");
  EXPECT_TRUE(tTraceState(trace).has(" --prefixwidth 50 --mutex off --calibrate 0 0 0"));
}

TEST_F(TraceInquire, MutexTokenIsNotMentioned) {
  trace.configure("--mutex-kernel-token 77:0");
  EXPECT_STREQ(tTraceState(trace).get(), kDefaults);
}

TEST(TraceInquireDestination, SettingsOfTheDestinationAreWrittenAsItGivesThem) {
  tRecordingDestination recorder;
  recorder.settings = "<x>";
  tPrivateTrace trace(recorder);
  EXPECT_TRUE(tTraceState(trace).beginsWith("--on<x> --compname on"));
}

TEST(TraceInquireDestination, DestinationWithoutSettingsAddsNothing) {
  tRecordingDestination recorder;
  recorder.settings = "";
  tPrivateTrace trace(recorder);
  EXPECT_TRUE(tTraceState(trace).beginsWith("--on --compname on"));
}

TEST_F(TraceInquire, CalibrationOffsetsFollowTheirOption) {
  trace.calibrate();
  tTraceState state(trace);
  u32 const whole = state.getLength();
  u32 const before = static_cast<u32>(__builtin_strlen(state.withoutCalibration()));
  char const* const calibration = state.get() + before + 1;
  EXPECT_EQ(__builtin_memcmp(calibration, "--calibrate ", 12), 0);
  u32 blanks = 0;
  for (u32 index = 11; index < whole - before - 1; ++index) {
    bool const isDigit = calibration[index] >= '0' && calibration[index] <= '9';
    if (calibration[index] == ' ') ++blanks;
    EXPECT_TRUE(isDigit || calibration[index] == ' ');
  }
  EXPECT_EQ(blanks, u32{3});
}

TEST_F(TraceInquire, NeededSizeIsLearntWithoutABuffer) {
  unsigned int needed = 0;
  trace.inquire(nullptr, 0, &needed);
  EXPECT_EQ(needed, kNeeded + 0u);
}

TEST_F(TraceInquire, NullBufferWithASizeStillTellsTheNeededSize) {
  unsigned int needed = 0;
  trace.inquire(nullptr, 1000, &needed);
  EXPECT_EQ(needed, kNeeded + 0u);
}

TEST_F(TraceInquire, NeededSizeNeedNotBeAskedFor) {
  char* const buffer = freshBuffer();
  trace.inquire(buffer, kNeeded, nullptr);
  EXPECT_STREQ(buffer, kDefaults);
  trace.inquire(nullptr, 0, nullptr);
}

TEST_F(TraceInquire, SizeZeroTouchesNothing) {
  char* const buffer = freshBuffer();
  unsigned int needed = 0;
  trace.inquire(buffer, 0, &needed);
  EXPECT_EQ(buffer[0], '#');
  EXPECT_EQ(needed, kNeeded + 0u);
}

TEST_F(TraceInquire, TextIsCutAtEverySizeAndTerminated) {
  for (unsigned int size = 1; size <= kNeeded; ++size) {
    char* const buffer = freshBuffer();
    unsigned int needed = 0;
    trace.inquire(buffer, size, &needed);
    EXPECT_EQ(__builtin_memcmp(buffer, kDefaults, size - 1), 0);
    EXPECT_EQ(buffer[size - 1], '\0');
    EXPECT_EQ(buffer[size], '#');
    EXPECT_EQ(needed, kNeeded + 0u);
  }
}

TEST_F(TraceInquire, LastByteOfALargerBufferIsTerminatedToo) {
  char* const buffer = freshBuffer();
  trace.inquire(buffer, kNeeded + 10, nullptr);
  EXPECT_STREQ(buffer, kDefaults);
  EXPECT_EQ(buffer[kNeeded], '#');
  EXPECT_EQ(buffer[kNeeded + 9], '\0');
  EXPECT_EQ(buffer[kNeeded + 10], '#');
}

namespace {

// Notes how it is asked for its settings.
class tAskedDestination : public tRecordingDestination {
 public:
  char* inquire(char* buffer, unsigned int size, unsigned int* required) override {
    askedBuffer = buffer;
    askedSize = size;
    return tRecordingDestination::inquire(buffer, size, required);
  }

  char* askedBuffer = nullptr;
  unsigned int askedSize = 99;
};

}  // namespace

TEST(TraceInquireDestination, DestinationIsAskedForTheRestOfTheBuffer) {
  tAskedDestination asked;
  tPrivateTrace trace(asked);
  char* const buffer = freshBuffer();
  trace.inquire(buffer, 40, nullptr);
  EXPECT_TRUE(asked.askedBuffer == buffer + 4);
  EXPECT_EQ(asked.askedSize, 36u);
}

TEST(TraceInquireDestination, DestinationIsAskedWithoutBytesWhenTheyAreUsedUp) {
  tAskedDestination asked;
  tPrivateTrace trace(asked);
  for (unsigned int size = 0; size <= 4; ++size) {
    char* const buffer = freshBuffer();
    unsigned int needed = 0;
    trace.inquire(buffer, size, &needed);
    EXPECT_EQ(asked.askedSize, 0u);
    EXPECT_EQ(needed, kNeeded + 0u);
    EXPECT_EQ(buffer[size], '#');
  }
}

TEST(TraceInquireDestination, DestinationIsAskedWithoutABufferWhenThereIsNone) {
  tAskedDestination asked;
  tPrivateTrace trace(asked);
  trace.inquire(nullptr, 100, nullptr);
  EXPECT_TRUE(asked.askedBuffer == nullptr);
  EXPECT_EQ(asked.askedSize, 0u);
}
