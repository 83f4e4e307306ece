// What the flight recorder hands on to the debugger print, and what its memory looks like when it
// is given back.

#include <gtest/gtest.h>

#include <cstring>

#include "capturedPrint.h"
#include "ntoshost/pool.h"
#include "oxdiagk/tRecorderTraceDestination.h"
#include "startedModules.h"

namespace {

using nOXDIAG100::tRecorderRing;
using nOXDIAG100::tRecorderTraceDestination;

class RecorderHandsOn : public testing::Test {
 protected:
  // Opened with these words.
  void open(char const* first, char const* second = nullptr) {
    char* words[] = {const_cast<char*>(first), const_cast<char*>(second)};
    recorder.configure(second == nullptr ? 1 : 2, words);
    ASSERT_EQ(recorder.open(), 1u);
  }

  u64 capacityOf(char const* word) {
    open(word);
    return recorder.getRing()->capacity / 1024;
  }

  tRecorderTraceDestination recorder;
  tCapturedPrint print;
};

// How many blocks are given back that begin as a ring, or as one whose signature was wiped.
struct tRingsGivenBack {
  tRingsGivenBack() { ntoshost::visitGivenBack(&count, this); }
  ~tRingsGivenBack() { ntoshost::visitGivenBack(nullptr, nullptr); }

  static void count(void* context, ntoshost::PoolBlock const& block) {
    tRecorderRing ring;
    if (block.size < sizeof(ring)) return;
    memcpy(&ring, block.address, sizeof(ring));
    if (ring.inverse != ~ring.capacity) return;
    tRingsGivenBack& self = *static_cast<tRingsGivenBack*>(context);
    if (ring.signature[0] == tRecorderRing::kSignature[0]) ++self.found;
    if (ring.signature[0] == '\0') ++self.wiped;
  }

  int found = 0;
  int wiped = 0;
};

}  // namespace

TEST_F(RecorderHandsOn, EachTextOnceAndKeepsItToo) {
  open("1", "vex");
  recorder.put("one ").put("two three", 3).put("", 0);
  EXPECT_EQ(print.prints, (std::vector<std::string>{"one ", "two"}));
  EXPECT_EQ(recorder.getRing()->written, 7u);
}

TEST_F(RecorderHandsOn, NothingWithoutTheWord) {
  open("1");
  recorder.put("one");
  EXPECT_TRUE(print.prints.empty());
}

TEST_F(RecorderHandsOn, NothingWhileItIsClosed) {
  open("1", "vex");
  recorder.close();
  recorder.put("one");
  EXPECT_TRUE(print.prints.empty());
  ASSERT_EQ(recorder.open(), 1u);
  recorder.put("two");
  EXPECT_EQ(print.text(), "two");
}

TEST_F(RecorderHandsOn, AnInquirySaysSoAndWhereItEnds) {
  char settings[64] = "";
  unsigned int needed = 0;
  open("2", "vex");
  char const* const end = recorder.inquire(settings, sizeof(settings), &needed);
  EXPECT_EQ(end, settings + strlen(settings));
  EXPECT_STREQ(settings, " --destination recorder 2 vex");
  EXPECT_EQ(needed, sizeof(" --destination recorder 2 vex"));
}

// A word that begins with a digit is a size; any other is none, and the size stays.
TEST_F(RecorderHandsOn, WhatBeginsWithADigitIsTheSize) {
  EXPECT_EQ(capacityOf("3"), 3u);
  EXPECT_EQ(capacityOf("0x5"), 5u);
  EXPECT_EQ(capacityOf("9"), 9u);
  EXPECT_EQ(capacityOf("/4"), 9u);
  EXPECT_EQ(capacityOf(":4"), 9u);
  EXPECT_EQ(capacityOf("0"), 1u);
}

TEST_F(RecorderHandsOn, TheSameSizeKeepsTheRing) {
  open("2");
  tRecorderRing const* const ring = recorder.getRing();
  open("2");
  EXPECT_EQ(recorder.getRing(), ring);
}

TEST_F(RecorderHandsOn, AnotherSizeKeepsTheNewestTextInItsOrder) {
  open("1");
  std::string whole;
  for (int index = 0; whole.size() < 1500; ++index) whole += std::to_string(index) + " ";
  recorder.put(whole.data(), static_cast<unsigned int>(whole.size()) / 2);
  recorder.put(whole.data() + whole.size() / 2,
               static_cast<unsigned int>(whole.size() - whole.size() / 2));
  open("4");
  tRecorderRing const& ring = *recorder.getRing();
  ASSERT_EQ(ring.written, 1024u);
  EXPECT_EQ(std::string(const_cast<tRecorderRing&>(ring).getText(), 1024),
            whole.substr(whole.size() - 1024));
}

TEST_F(RecorderHandsOn, ATextOfJustTheRingFillsIt) {
  open("1");
  std::string const text(1023, 'a');
  recorder.put((text + "b").c_str());
  tRecorderRing& ring = const_cast<tRecorderRing&>(*recorder.getRing());
  EXPECT_EQ(std::string(ring.getText(), 1024), text + "b");
  EXPECT_EQ(ring.written, 1024u);
}

TEST_F(RecorderHandsOn, OfATextOfSeveralRingsTheLastOneStays) {
  open("1");
  std::string const text(5000, 'a');
  std::string const last(1024, 'b');
  recorder.put((text + last).c_str());
  tRecorderRing& ring = const_cast<tRecorderRing&>(*recorder.getRing());
  EXPECT_EQ(std::string(ring.getText(), 1024), last);
  EXPECT_EQ(ring.written, 1024u);
  ntoshost::verifyPool();
}

// A later dump would show it as a second recorder.
TEST_F(RecorderHandsOn, ARingIsGivenBackWithoutItsSignature) {
  tRingsGivenBack rings;
  open("1");
  recorder.put("text");
  open("2");
  EXPECT_EQ(rings.wiped, 1);
  {
    tRecorderTraceDestination other;
    ASSERT_EQ(other.open(), 1u);
  }
  EXPECT_EQ(rings.wiped, 2);
  EXPECT_EQ(rings.found, 0);
}

TEST_F(RecorderHandsOn, ARecorderThatWasNeverOpenedGivesNothingBack) {
  tRingsGivenBack const rings;
  { tRecorderTraceDestination const other; }
  EXPECT_EQ(rings.wiped + rings.found, 0);
}
