// The time delta to the tick: the tests set what it is reckoned from and read when the line began.

#include "conformance/harness.h"
#include "support/prefixedStream.h"
#include "vexk/number.h"

using nOXDIAG100::tTrace;

namespace {

constexpr u64 kLastLineTime = 1'000'000;
constexpr u64 kCarried = 70'000;
constexpr u64 kEntryOffset = 100;
constexpr u64 kExitOffset = 2'000;
constexpr u64 kLineOffset = 30'000;

// A stream whose prefixes are the time delta alone, between brackets, with all times known.
struct tTimedStream : tPrefixedStream {
  tTimedStream() {
    disableAllFields();
    showFieldsInFull();
    trace.disableIndenting();
    trace.enableTimeDelta();
    reset();
  }

  void reset() {
    trace.getClock().setEnd(kLastLineTime);
    trace.getCarriedDelta() = kCarried;
    trace.getClock().setOffset(0, kEntryOffset);
    trace.getClock().setOffset(1, kExitOffset);
    trace.getClock().setOffset(2, kLineOffset);
  }

  // Writes a line of `type` and tells whether it shows the delta reckoned with `offset`.
  bool showsDelta(tTrace::tTraceType type, u64 offset) {
    write(withType(type));
    u64 const delta = trace.getClock().getStart() - (offset + kLastLineTime) + kCarried;
    char expected[kNumberTextSize + 4] = "[";
    u32 const length = vexNumberToText(delta, 10, expected + 1);
    __builtin_memcpy(expected + 1 + length, "] \n", 4);
    return record.length() == length + 4 &&
           __builtin_memcmp(expected, record.text(), length + 5) == 0;
  }
};

}  // namespace

TEST(TracePrefixTime, APlainLineUsesTheThirdOffset) {
  tTimedStream stream;
  EXPECT_TRUE(stream.showsDelta(tTrace::kTraceLine, kLineOffset));
}

TEST(TracePrefixTime, ABlockEntryUsesTheFirstOffset) {
  tTimedStream stream;
  EXPECT_TRUE(stream.showsDelta(tTrace::kBlockEntry, kEntryOffset));
}

TEST(TracePrefixTime, ABlockExitUsesTheSecondOffset) {
  tTimedStream stream;
  EXPECT_TRUE(stream.showsDelta(tTrace::kBlockExit, kExitOffset));
}

TEST(TracePrefixTime, AnUnknownTypeUsesTheThirdOffset) {
  tTimedStream stream;
  EXPECT_TRUE(stream.showsDelta(static_cast<tTrace::tTraceType>(3), kLineOffset));
}

TEST(TracePrefixTime, ADeltaBelowZeroIsShownWrapped) {
  tTimedStream stream;
  u64 const beyond = nOXDIAG100::readTimeStampCounter() + (1ull << 50);
  stream.trace.getClock().setOffset(2, beyond);
  EXPECT_TRUE(stream.showsDelta(tTrace::kTraceLine, beyond));
  EXPECT_EQ(u32{20 + 4}, stream.record.length());
}

TEST(TracePrefixTime, AShownLineUsesTheCarriedDeltaUp) {
  tTimedStream stream;
  stream.write();
  EXPECT_EQ(u64{0}, stream.trace.getCarriedDelta());
}

TEST(TracePrefixTime, AHiddenLineCarriesItsDelta) {
  tTimedStream stream;
  stream.write(stream.withVerbosity(99));
  u64 const delta = stream.trace.getClock().getStart() - (kLineOffset + kLastLineTime) + kCarried;
  EXPECT_EQ(delta, stream.trace.getCarriedDelta());
}

TEST(TracePrefixTime, ALineOfADisabledStreamCarriesItsDelta) {
  tTimedStream stream;
  stream.trace.disable();
  stream.write(stream.withType(tTrace::kBlockExit));
  u64 const delta = stream.trace.getClock().getStart() - (kExitOffset + kLastLineTime) + kCarried;
  EXPECT_EQ(delta, stream.trace.getCarriedDelta());
}

TEST(TracePrefixTime, HiddenLinesAddUp) {
  tTimedStream stream;
  u64 carried = kCarried;
  for (u32 count = 0; count < 3; ++count) {
    stream.withVerbosity(99).openOn(stream.trace);
    carried += stream.trace.getClock().getStart() - (kLineOffset + kLastLineTime);
    stream.trace.endl();
    stream.trace.getClock().setEnd(kLastLineTime);
  }
  EXPECT_EQ(carried, stream.trace.getCarriedDelta());
}

TEST(TracePrefixTime, WithoutTheSwitchTheCarriedDeltaStays) {
  tTimedStream stream;
  stream.trace.disableTimeDelta();
  stream.write();
  stream.write(stream.withVerbosity(99));
  EXPECT_EQ(kCarried, stream.trace.getCarriedDelta());
}

TEST(TracePrefixTime, ADeltaThatTheWidthCutsAwayIsUsedUpAllTheSame) {
  tTimedStream stream;
  stream.trace.enableTruncation();
  EXPECT_STREQ("\n", stream.write());
  EXPECT_EQ(u64{0}, stream.trace.getCarriedDelta());
}

TEST(TracePrefixTime, TheLineStartTimeIsKeptForHiddenLinesToo) {
  tTimedStream stream;
  stream.trace.getClock().start(0);
  stream.write(stream.withVerbosity(99));
  EXPECT_NE(u64{0}, stream.trace.getClock().getStart());
}

TEST(TracePrefixTime, ThePrefixLeavesTheLastLineTimeAlone) {
  tTimedStream stream;
  tTestLine{}.openOn(stream.trace);
  EXPECT_EQ(kLastLineTime, stream.trace.getClock().getEnd());
}

// Calibration.

TEST(TracePrefixCalibration, NothingReachesTheDestination) {
  tPrefixedStream stream;
  stream.trace.calibrate();
  EXPECT_EQ(u32{0}, stream.record.pieceCount());
}

TEST(TracePrefixCalibration, TextPutBeforeStays) {
  tPrefixedStream stream;
  stream.trace.put("early");
  stream.trace.calibrate();
  stream.trace.endl();
  EXPECT_STREQ("early\n", stream.record.text());
}

TEST(TracePrefixCalibration, TheMasterSwitchIsRestored) {
  tPrefixedStream stream;
  stream.trace.calibrate();
  EXPECT_EQ(u32{1}, stream.trace.isEnabled());
  stream.trace.disable();
  stream.trace.calibrate();
  EXPECT_EQ(u32{0}, stream.trace.isEnabled());
}

TEST(TracePrefixCalibration, TheNestingLevelIsAsBefore) {
  tPrefixedStream stream;
  stream.writeBlockEntry();
  stream.trace.calibrate();
  EXPECT_EQ(i32{1}, stream.trace.getNestingLevel());
}

TEST(TracePrefixCalibration, AllThreeOffsetsAreMeasured) {
  constexpr u64 kNeverMeasured = ~0ull / 2;
  tPrefixedStream stream;
  for (u32 index = 0; index < 3; ++index) stream.trace.getClock().setOffset(index, kNeverMeasured);
  stream.trace.calibrate();
  for (u32 index = 0; index < 3; ++index) {
    EXPECT_NE(kNeverMeasured, stream.trace.getClock().getOffset(index));
  }
}

TEST(TracePrefixCalibration, TheStreamsOwnLinesAreLeftAlone) {
  tTimedStream stream;
  stream.withVerbosity(99).openOn(stream.trace);
  u64 const begin = stream.trace.getClock().getStart();
  u64 const carried = stream.trace.getCarriedDelta();
  stream.trace.calibrate();
  EXPECT_EQ(begin, stream.trace.getClock().getStart());
  EXPECT_EQ(carried, stream.trace.getCarriedDelta());
  EXPECT_EQ(kLastLineTime, stream.trace.getClock().getEnd());
  EXPECT_FALSE(stream.trace.isLineShown());
}

TEST(TracePrefixCalibration, WhileDeltasAreOffTheyCountFromItsEnd) {
  tTimedStream stream;
  stream.trace.disableTimeDelta();
  u64 const before = nOXDIAG100::readTimeStampCounter();
  stream.trace.calibrate();
  EXPECT_LT(before, stream.trace.getClock().getEnd());
}

TEST(TracePrefixCalibration, ALineBehindItIsWrittenAsEver) {
  tPrefixedStream stream;
  stream.showFieldsInFull();
  stream.trace.calibrate();
  EXPECT_TRUE(stream.trace.isLineShown());
  EXPECT_STREQ("[rack--42--port.cpp] \n", stream.write());
}

TEST(TracePrefixCalibration, ItMayRunAgainAndWithTheMutexOn) {
  tPrefixedStream stream;
  stream.trace.enableMutex();
  stream.trace.calibrate();
  stream.trace.calibrate();
  stream.showFieldsInFull();
  EXPECT_STREQ("[rack--42--port.cpp] \n", stream.write());
}

// Lines that follow each other at once.

namespace {

constexpr u32 kLinesAtOnce = 300;

// In the order of their offsets.
constexpr tTrace::tTraceType kTypes[] = {tTrace::kBlockEntry, tTrace::kBlockExit,
                                         tTrace::kTraceLine};

// The deltas of a run of lines at once, in the order in which they are shown. A wrapped one is
// beyond the half of the range.
struct tDeltas {
  static constexpr u64 kWrapped = ~0ull / 2;

  u32 wrapped = 0;
  u32 small = 0;  // less than what a calibration that took whole lines for a gap would leave
  u32 all = 0;
  u64 least = ~0ull;

  void take(char const* line) {
    u64 delta = 0;
    for (++line; *line >= '0' && *line <= '9'; ++line) {
      delta = delta * 10 + static_cast<u64>(*line - '0');
    }
    ++all;
    if (delta > kWrapped) ++wrapped;
    if (delta < kSmall) ++small;
    if (delta < least) least = delta;
  }

 private:
  static constexpr u64 kSmall = 100'000;
};

// A stream whose prefixes are the time delta alone.
struct tDeltaStream : tPrefixedStream {
  tDeltaStream() {
    disableAllFields();
    showFieldsInFull();
    trace.disableIndenting();
    trace.enableTimeDelta();
  }

  void run(tTrace::tTraceType type, tDeltas& deltas) {
    tTestLine const line = withType(type);
    trace.endl();
    for (u32 count = 0; count < kLinesAtOnce; ++count) {
      record.clear();
      trace.endl();
      line.openOn(trace).endl();
      deltas.take(record.text() + record.pieceLength(0));
    }
  }
};

}  // namespace

TEST(TracePrefixCalibration, LinesAtOnceShowSmallDeltasAndNoneBelowZero) {
  tDeltaStream stream;
  for (u32 round = 0; round < 20; ++round) {
    stream.trace.calibrate();
    for (tTrace::tTraceType const type : kTypes) {
      tDeltas deltas;
      stream.run(type, deltas);
      EXPECT_EQ(u32{0}, deltas.wrapped);
      EXPECT_EQ(kLinesAtOnce, deltas.all);
      EXPECT_LE(kLinesAtOnce / 2, deltas.small);
    }
  }
}

TEST(TracePrefixCalibration, NoOffsetIsMoreThanTheShortestGapBetweenLines) {
  tDeltaStream stream;
  for (u32 index = 0; index < 3; ++index) stream.trace.getClock().setOffset(index, 0);
  tDeltas gaps[3];
  for (u32 index = 0; index < 3; ++index) stream.run(kTypes[index], gaps[index]);
  for (u32 round = 0; round < 20; ++round) {
    stream.trace.calibrate();
    for (u32 index = 0; index < 3; ++index) {
      EXPECT_LE(stream.trace.getClock().getOffset(index), gaps[index].least);
    }
  }
}
