// The flight recorder: what its ring holds, its words, and how long it keeps what it has.

#include "oxdiagk/tRecorderTraceDestination.h"
#include "conformance/harness.h"
#include "oxdiagk/tTrace.h"
#include "oxdiagk/tVEXTraceDestination.h"
#include "support/recordingDestination.h"
#include "support/traceState.h"

namespace {

using nOXDIAG100::tRecorderRing;
using nOXDIAG100::tRecorderTraceDestination;
using nOXDIAG100::tVEXTraceDestination;

constexpr u32 kBytesPerKiB = 1024;

void configureWords(tRecorderTraceDestination& recorder, char const* first,
                    char const* second = nullptr) {
  char* words[] = {const_cast<char*>(first), const_cast<char*>(second)};
  recorder.configure(second == nullptr ? 1 : 2, words);
}

// The newest `size` bytes of a ring, in storage of the tests.
char const* newestOf(tRecorderTraceDestination const& recorder, u32 size) {
  static constinit char text[kBytesPerKiB * 4 + 1] = {};
  tRecorderRing& ring = const_cast<tRecorderRing&>(*recorder.getRing());
  for (u32 index = 0; index < size; ++index) {
    text[index] = ring.getText()[(ring.written - size + index) % ring.capacity];
  }
  text[size] = 0;
  return text;
}

class Recorder : public oxt::tFixture {
 protected:
  Recorder() { configureWords(recorder, "1"); }

  bool isNewest(char const* wanted) const {
    u32 const length = static_cast<u32>(__builtin_strlen(wanted));
    return __builtin_memcmp(newestOf(recorder, length), wanted, length) == 0;
  }

  char const* inquire() {
    recorder.inquire(settings, sizeof(settings), nullptr);
    return settings;
  }

  tRecorderTraceDestination recorder;
  char settings[64];
};

}  // namespace

TEST_F(Recorder, NothingIsKeptBeforeTheFirstOpen) {
  EXPECT_TRUE(&recorder.put("text") == &recorder);
  EXPECT_TRUE(&recorder.put("text", 4) == &recorder);
  EXPECT_TRUE(recorder.getRing() == nullptr);
}

TEST_F(Recorder, RingSaysWhatItIs) {
  ASSERT_EQ(recorder.open(), u32{1});
  tRecorderRing const& ring = *recorder.getRing();
  EXPECT_STREQ(ring.signature, "oxdiag recorder");
  EXPECT_EQ(ring.headSize, u32{56});
  EXPECT_EQ(ring.layout, u32{1});
  EXPECT_EQ(ring.capacity, u64{kBytesPerKiB});
  EXPECT_EQ(ring.inverse, ~u64{kBytesPerKiB});
  EXPECT_EQ(ring.written, u64{0});
  EXPECT_EQ(ring.address, reinterpret_cast<u64>(&ring));
}

TEST_F(Recorder, TextsStandBehindOneAnother) {
  ASSERT_EQ(recorder.open(), u32{1});
  recorder.put("one ").put("two three", 3).put(nullptr).put(nullptr, 7).put("").put("x", 0);
  EXPECT_EQ(recorder.getRing()->written, u64{7});
  EXPECT_TRUE(isNewest("one two"));
}

TEST_F(Recorder, NulCharactersCount) {
  ASSERT_EQ(recorder.open(), u32{1});
  recorder.put("a\0b", 3);
  EXPECT_EQ(recorder.getRing()->written, u64{3});
}

TEST_F(Recorder, TextGoesRoundTheEndInOnePiece) {
  ASSERT_EQ(recorder.open(), u32{1});
  for (u32 fill = kBytesPerKiB - 9; fill <= kBytesPerKiB + 1; ++fill) {
    u64 const before = recorder.getRing()->written % kBytesPerKiB;
    for (u64 place = before; place != fill % kBytesPerKiB; place = (place + 1) % kBytesPerKiB) {
      recorder.put(".");
    }
    recorder.put("0123456789");
    EXPECT_TRUE(isNewest("0123456789"));
  }
}

TEST_F(Recorder, OfMoreThanTheRingTheLastBytesStay) {
  static constinit char text[2 * kBytesPerKiB] = {};
  for (u32 index = 0; index < sizeof(text); ++index)
    text[index] = static_cast<char>('a' + index % 7);
  ASSERT_EQ(recorder.open(), u32{1});
  for (u32 size = kBytesPerKiB - 1; size <= kBytesPerKiB + 1; ++size) {
    recorder.put(text, size);
    u32 const kept = size < kBytesPerKiB ? size : kBytesPerKiB;
    EXPECT_TRUE(__builtin_memcmp(newestOf(recorder, kept), text + size - kept, kept) == 0);
  }
}

TEST_F(Recorder, SizeIsLimited) {
  static constexpr struct {
    char const* word;
    u32 kiB;
  } kSizes[] = {{"0", 1}, {"1", 1}, {"2", 2}, {"16384", 16384}, {"16385", 16384}};
  for (auto const& size : kSizes) {
    configureWords(recorder, size.word);
    ASSERT_EQ(recorder.open(), u32{1});
    EXPECT_EQ(recorder.getRing()->capacity, u64{size.kiB} * kBytesPerKiB);
  }
}

TEST_F(Recorder, AnotherSizeKeepsWhatFits) {
  ASSERT_EQ(recorder.open(), u32{1});
  for (u32 index = 0; index < 300; ++index) recorder.put("12345 ");
  recorder.put("the end");
  configureWords(recorder, "2");
  ASSERT_EQ(recorder.open(), u32{1});
  EXPECT_EQ(recorder.getRing()->written, u64{kBytesPerKiB});
  EXPECT_TRUE(isNewest("12345 12345 the end"));
  configureWords(recorder, "1");
  ASSERT_EQ(recorder.open(), u32{1});
  EXPECT_TRUE(isNewest("12345 12345 the end"));
}

TEST_F(Recorder, TextStaysWhileItIsClosedAndOpenedAgain) {
  ASSERT_EQ(recorder.open(), u32{1});
  recorder.put("kept");
  recorder.close();
  EXPECT_TRUE(isNewest("kept"));
  ASSERT_EQ(recorder.open(), u32{1});
  EXPECT_TRUE(isNewest("kept"));
}

TEST_F(Recorder, SettingsAreThoseOfTheLastOpen) {
  EXPECT_STREQ(inquire(), " --destination recorder 64");
  EXPECT_STREQ(recorder.getDescription(), "Flight recorder with 1 KiB");
  ASSERT_EQ(recorder.open(), u32{1});
  EXPECT_STREQ(inquire(), " --destination recorder 1");
  configureWords(recorder, "vex", "12");
  EXPECT_STREQ(inquire(), " --destination recorder 1");
  EXPECT_STREQ(recorder.getDescription(), "Flight recorder with 12 KiB");
  ASSERT_EQ(recorder.open(), u32{1});
  EXPECT_STREQ(inquire(), " --destination recorder 12 vex");
  configureWords(recorder, "unknown");
  ASSERT_EQ(recorder.open(), u32{1});
  EXPECT_STREQ(inquire(), " --destination recorder 12");
}

TEST(RecorderOption, WhatIsDestroyedLeavesItsStreamToTheDebuggerPrint) {
  tRecordingDestination before;
  tPrivateTrace trace(before);
  {
    tRecorderTraceDestination recorder;
    trace.setDestination(recorder);
    EXPECT_TRUE(trace.getDestination() == &recorder);
  }
  EXPECT_TRUE(trace.getDestination() == &tVEXTraceDestination::getInstance());
}

TEST(RecorderOption, ChoosesTheInstanceAndComesBackByPop) {
  tRecordingDestination before;
  tPrivateTrace trace(before);
  trace.configure("--destination recorder 2");
  tRecorderTraceDestination* const recorder = tRecorderTraceDestination::getInstance();
  ASSERT_TRUE(recorder != nullptr && recorder->getRing() != nullptr);
  EXPECT_TRUE(trace.getDestination() == recorder);
  EXPECT_TRUE(tTraceState(trace).beginsWith("--on --destination recorder 2 --compname on"));
  trace.put("recorded").endl();
  EXPECT_STREQ(newestOf(*recorder, 9), "recorded\n");
  trace.pushConfiguration();
  trace.configure("--destination vex");
  trace.popConfiguration();
  EXPECT_TRUE(trace.getDestination() == recorder);
  EXPECT_EQ(recorder->getRing()->capacity, u64{2 * kBytesPerKiB});
  trace.setDestination(before);
}
