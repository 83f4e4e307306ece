// The capture: trace text in a buffer of the caller's, with the caller's own write position.

#include "oxdiagk/tCTFTraceDestination.h"

#include "conformance/harness.h"
#include "oxdiagk/tStatus2.h"
#include "oxdiagk/tTrace.h"
#include "oxdiagk/tVEXTraceDestination.h"
#include "support/recordingDestination.h"

namespace {

using nOXDIAG100::iTraceDestination;
using nOXDIAG100::tCTFTraceDestination;
using nOXDIAG100::tStatus2;
using nOXDIAG100::tTrace;
using nOXDIAG100::tVEXTraceDestination;

constexpr char kUntouched = '#';

// A buffer of untouched bytes, some of which a test gives to its capture.
struct tBuffer {
  char bytes[64];
  i32 position = 0;

  tBuffer() { __builtin_memset(bytes, kUntouched, sizeof(bytes)); }

  // Whether bytes[begin] to bytes[end - 1] are all `wanted`.
  bool isFilledWith(char wanted, i32 begin, i32 end) const {
    for (i32 index = begin; index < end; ++index) {
      if (bytes[index] != wanted) return false;
    }
    return true;
  }

  bool isUntouchedFrom(i32 begin) const { return isFilledWith(kUntouched, begin, sizeof(bytes)); }
};

bool isCurrent(iTraceDestination const& destination) {
  return tTrace::getInstance().getDestination() == &destination;
}

bool hasText(char const* bytes, char const* wanted, i32 length) {
  return __builtin_memcmp(bytes, wanted, static_cast<size_t>(length)) == 0;
}

}  // namespace

TEST(Capture, ConstructionTerminatesTheLastByteAndTouchesNoOther) {
  tBuffer buffer;
  tCTFTraceDestination const capture(buffer.bytes, buffer.position, 8, nullptr);
  EXPECT_TRUE(buffer.isFilledWith(kUntouched, 0, 7));
  EXPECT_EQ(buffer.bytes[7], 0);
  EXPECT_TRUE(buffer.isUntouchedFrom(8));
  EXPECT_EQ(buffer.position, 0);
}

TEST(Capture, ConstructionAtOrBehindTheLastByteWritesNothing) {
  for (i32 position = 7; position <= 9; ++position) {
    tBuffer buffer;
    buffer.position = position;
    tCTFTraceDestination const capture(buffer.bytes, buffer.position, 8, nullptr);
    EXPECT_TRUE(buffer.isUntouchedFrom(0));
    EXPECT_EQ(buffer.position, position);
  }
}

TEST(Capture, ConstructionOneBeforeTheLastByteTerminatesIt) {
  tBuffer buffer;
  buffer.position = 6;
  tCTFTraceDestination const capture(buffer.bytes, buffer.position, 8, nullptr);
  EXPECT_EQ(buffer.bytes[7], 0);
}

TEST(Capture, TextIsTerminatedAndTheNextOneGoesOnThere) {
  tBuffer buffer;
  tCTFTraceDestination capture(buffer.bytes, buffer.position, 8, nullptr);
  EXPECT_TRUE(&capture.put("abc") == &capture);
  EXPECT_STREQ(buffer.bytes, "abc");
  EXPECT_EQ(buffer.position, 3);
  EXPECT_TRUE(buffer.isFilledWith(kUntouched, 4, 7));
  capture.put("defghij");
  EXPECT_STREQ(buffer.bytes, "abcdefg");
  EXPECT_EQ(buffer.position, 7);
  EXPECT_TRUE(buffer.isUntouchedFrom(8));
}

TEST(Capture, TextThatFillsAllButTheLastByteFits) {
  tBuffer buffer;
  tCTFTraceDestination capture(buffer.bytes, buffer.position, 8, nullptr);
  capture.put("abcdef");
  EXPECT_EQ(buffer.position, 6);
  EXPECT_EQ(buffer.bytes[6], 0);
  capture.put("g");
  EXPECT_EQ(buffer.position, 7);
  EXPECT_STREQ(buffer.bytes, "abcdefg");
  capture.put("h");
  EXPECT_EQ(buffer.position, 7);
  EXPECT_STREQ(buffer.bytes, "abcdefg");
}

TEST(Capture, EmptyTextOnlyTerminates) {
  tBuffer buffer;
  tCTFTraceDestination capture(buffer.bytes, buffer.position, 8, nullptr);
  capture.put("");
  EXPECT_EQ(buffer.position, 0);
  EXPECT_EQ(buffer.bytes[0], 0);
  EXPECT_EQ(buffer.bytes[1], kUntouched);
}

TEST(Capture, CountedTextGoesOnBehindANulAndGetsNoTerminator) {
  tBuffer buffer;
  tCTFTraceDestination capture(buffer.bytes, buffer.position, 8, nullptr);
  EXPECT_TRUE(&capture.put("xy\0zu", 5) == &capture);
  EXPECT_TRUE(hasText(buffer.bytes, "xy\0zu", 5));
  EXPECT_EQ(buffer.position, 5);
  EXPECT_EQ(buffer.bytes[5], kUntouched);
}

TEST(Capture, CountedTextStopsBeforeTheLastByte) {
  for (unsigned int length = 6; length <= 9; ++length) {
    tBuffer buffer;
    tCTFTraceDestination capture(buffer.bytes, buffer.position, 8, nullptr);
    capture.put("abcdefghi", length);
    i32 const wanted = length < 7 ? 6 : 7;
    EXPECT_EQ(buffer.position, wanted);
    EXPECT_TRUE(hasText(buffer.bytes, "abcdefg", wanted));
    EXPECT_EQ(buffer.bytes[7], 0);
    EXPECT_TRUE(buffer.isUntouchedFrom(8));
  }
}

TEST(Capture, CountedTextOfLengthZeroWritesNothing) {
  tBuffer buffer;
  tCTFTraceDestination capture(buffer.bytes, buffer.position, 8, nullptr);
  capture.put("abc", 0);
  EXPECT_EQ(buffer.position, 0);
  EXPECT_EQ(buffer.bytes[0], kUntouched);
}

TEST(Capture, NullTextIsNoText) {
  tBuffer buffer;
  tCTFTraceDestination capture(buffer.bytes, buffer.position, 8, nullptr);
  char const* const none = nullptr;
  capture.put(none).put(none, 5);
  EXPECT_EQ(buffer.position, 0);
  EXPECT_TRUE(buffer.isFilledWith(kUntouched, 0, 7));
}

TEST(Capture, NullBufferCapturesNothing) {
  i32 position = 3;
  tCTFTraceDestination capture(nullptr, position, 8, nullptr);
  capture.put("abc").put("abc", 3);
  EXPECT_EQ(position, 3);
}

TEST(Capture, SizeWithoutRoomCapturesNothing) {
  constexpr i32 kSizes[] = {1, 0, -1, -2147483647 - 1};
  for (i32 const size : kSizes) {
    tBuffer buffer;
    tCTFTraceDestination capture(buffer.bytes, buffer.position, size, nullptr);
    capture.put("abc").put("abc", 3);
    EXPECT_EQ(buffer.position, 0);
    EXPECT_TRUE(buffer.isUntouchedFrom(0));
  }
}

TEST(Capture, SizeWithoutABytePutsNoTerminatorWhereverThePositionIs) {
  constexpr i32 kSizes[] = {0, -1, -2147483647 - 1};
  for (i32 const size : kSizes) {
    tBuffer buffer;
    buffer.position = -1;
    tCTFTraceDestination const capture(buffer.bytes, buffer.position, size, nullptr);
    EXPECT_TRUE(buffer.isUntouchedFrom(0));
  }
}

TEST(Capture, PositionBehindTheBufferCapturesNothing) {
  for (i32 position = 8; position <= 9; ++position) {
    tBuffer buffer;
    buffer.position = position;
    tCTFTraceDestination capture(buffer.bytes, buffer.position, 8, nullptr);
    capture.put("abc").put("abc", 3);
    EXPECT_EQ(buffer.position, position);
    EXPECT_TRUE(buffer.isUntouchedFrom(0));
  }
}

TEST(Capture, NegativePositionCapturesNothing) {
  tBuffer buffer;
  buffer.position = -1;
  tCTFTraceDestination capture(buffer.bytes + 8, buffer.position, 8, nullptr);
  capture.put("abc").put("abc", 3);
  EXPECT_EQ(buffer.position, -1);
  EXPECT_TRUE(buffer.isFilledWith(kUntouched, 0, 15));
}

TEST(Capture, PositionSetBackByTheOwnerCapturesAnew) {
  tBuffer buffer;
  tCTFTraceDestination capture(buffer.bytes, buffer.position, 8, nullptr);
  capture.put("abcdefghij");
  buffer.position = 0;
  capture.put("xy");
  EXPECT_STREQ(buffer.bytes, "xy");
  EXPECT_EQ(buffer.position, 2);
}

TEST(Capture, StatusIsNotTouched) {
  tBuffer buffer;
  tStatus2 status;
  tCTFTraceDestination capture(nullptr, buffer.position, -5, &status);
  capture.put("abc");
  EXPECT_EQ(status.getCode(), 0);
}

TEST(Capture, SettingsAreWrittenAsOfAnyDestination) {
  tBuffer buffer;
  tCTFTraceDestination capture(nullptr, buffer.position, 0, nullptr);
  unsigned int required = 0;
  EXPECT_TRUE(capture.inquire(nullptr, 0, &required) == nullptr);
  EXPECT_EQ(required, 19u);
  EXPECT_TRUE(capture.inquire(buffer.bytes, 19, nullptr) == buffer.bytes + 18);
  EXPECT_STREQ(buffer.bytes, " --destination ctf");
  EXPECT_TRUE(buffer.isUntouchedFrom(19));
  EXPECT_TRUE(capture.inquire(buffer.bytes, 18, &required) == buffer.bytes + 18);
  EXPECT_STREQ(buffer.bytes, " --destination ct");
  EXPECT_EQ(required, 19u);
}

TEST(Capture, DescribesItselfAndAlwaysOpens) {
  i32 position = 0;
  tCTFTraceDestination capture(nullptr, position, 0, nullptr);
  EXPECT_STREQ(capture.getDescription(), "CTF log file");
  EXPECT_EQ(capture.open(), u32{1});
  capture.close();
  EXPECT_EQ(capture.open(), u32{1});
}

TEST(Capture, WorksBeforeOpenAndAfterClose) {
  tBuffer buffer;
  tCTFTraceDestination capture(buffer.bytes, buffer.position, 16, nullptr);
  capture.put("a");
  capture.close();
  capture.put("b");
  EXPECT_STREQ(buffer.bytes, "ab");
}

TEST(Capture, OptionWordsAreIgnored) {
  tBuffer buffer;
  tCTFTraceDestination capture(buffer.bytes, buffer.position, 16, nullptr);
  char word[] = "overwrite";
  char* words[] = {word};
  capture.configure(1, words);
  capture.configure(0, nullptr);
  capture.configure(1, nullptr);
  capture.put("a");
  EXPECT_STREQ(buffer.bytes, "a");
}

TEST(Capture, ReceivesTheLinesOfItsStream) {
  tBuffer buffer;
  tTrace& trace = tTrace::getInstance();
  tCTFTraceDestination capture(buffer.bytes, buffer.position, sizeof(buffer.bytes), nullptr);
  iTraceDestination* const former = trace.setDestination(capture);
  trace.put("captured").endl();
  EXPECT_TRUE(hasText(buffer.bytes, "captured\n", 9));
  EXPECT_EQ(buffer.position, 9);
  EXPECT_TRUE(buffer.isFilledWith(kUntouched, 9, 63));  // no terminator behind the text
  trace.setDestination(*former);
}

TEST(Capture, DestroyedWhileCurrentSendsTheStreamToTheDebuggerAndKeepsTheAnnouncement) {
  tBuffer buffer;
  tTrace& trace = tTrace::getInstance();
  {
    tCTFTraceDestination capture(buffer.bytes, buffer.position, sizeof(buffer.bytes), nullptr);
    trace.setDestination(capture);
    EXPECT_TRUE(isCurrent(capture));
  }
  EXPECT_TRUE(isCurrent(tVEXTraceDestination::getInstance()));
  EXPECT_TRUE(hasText(buffer.bytes, "Switching trace destination to VEX print to debugger\n", 53));
  EXPECT_EQ(buffer.position, 53);
}

TEST(Capture, DestroyedWhileNotCurrentLeavesTheStreamAlone) {
  tBuffer buffer;
  tRecordingDestination recorder;
  tTrace& trace = tTrace::getInstance();
  iTraceDestination* const former = trace.setDestination(recorder);
  recorder.clear();
  { tCTFTraceDestination const capture(buffer.bytes, buffer.position, 16, nullptr); }
  EXPECT_TRUE(isCurrent(recorder));
  EXPECT_STREQ(recorder.events(), "");
  trace.setDestination(*former);
}

TEST(Capture, IsRestoredWhenASwitchAwayFromItFails) {
  tBuffer buffer;
  tRecordingDestination recorder;
  tCTFTraceDestination capture(buffer.bytes, buffer.position, sizeof(buffer.bytes), nullptr);
  tPrivateTrace trace(capture);
  buffer.position = 0;
  recorder.failingOpens = 1;
  trace.disable();
  EXPECT_TRUE(trace.setDestination(recorder) == &capture);
  EXPECT_TRUE(trace.getDestination() == &capture);
  trace.enable();
  trace.put("back").endl();
  EXPECT_TRUE(hasText(buffer.bytes, "back\n", 5));
  EXPECT_EQ(buffer.position, 5);
}

TEST(Capture, NoOptionSelectsIt) {
  tRecordingDestination recorder;
  tPrivateTrace trace(recorder);
  trace.configure("--destination ctf");
  EXPECT_TRUE(trace.getDestination() == &recorder);
}
