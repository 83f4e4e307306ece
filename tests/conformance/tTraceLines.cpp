// How text becomes lines: the buffer, its limit, newlines, endl, and what drops text.

#include "conformance/harness.h"
#include "oxdiagk/tTrace.h"
#include "support/recordingDestination.h"

namespace {

using nOXDIAG100::readTimeStampCounter;
using nOXDIAG100::tTrace;

constexpr u32 kLongest = 255;  // characters that one call of the destination gets

// Puts `count` characters: a, b, c ... z, a, b ...
void putLetters(tTrace& trace, u32 count) {
  for (u32 index = 0; index < count; ++index) trace.put(static_cast<char>('a' + index % 26));
}

bool isLetters(char const* text, u32 first, u32 count) {
  for (u32 index = 0; index < count; ++index) {
    if (text[index] != static_cast<char>('a' + (first + index) % 26)) return false;
  }
  return true;
}

// Opens a line that the default filter rejects, or shows, without any prefix text.
void openLine(tTrace& trace, u32 verbosity) {
  trace.setMinPrefixWidth(0);
  trace.putPrefix("test", tSSVersion(), 1, "file", verbosity, tTrace::kTraceLine);
}

class TraceLines : public tRecordedStream {};

}  // namespace

TEST_F(TraceLines, TextStaysInTheBufferUntilTheLineEnds) {
  trace.put("one").put(" two");
  EXPECT_EQ(recorder.pieceCount(), u32{0});
  trace.endl();
  EXPECT_EQ(recorder.pieceCount(), u32{1});
  EXPECT_STREQ(recorder.text(), "one two\n");
}

TEST_F(TraceLines, EndOfAnEmptyLineIsANewline) {
  trace.endl();
  trace.endl();
  EXPECT_EQ(recorder.pieceCount(), u32{2});
  EXPECT_STREQ(recorder.text(), "\n\n");
}

TEST_F(TraceLines, EveryOperationReturnsTheStream) {
  EXPECT_TRUE(&trace.put("x") == &trace);
  EXPECT_TRUE(&trace.endl() == &trace);
}

TEST_F(TraceLines, NewlineInsideTextEndsALine) {
  trace.put("a\nb").endl();
  EXPECT_EQ(recorder.pieceCount(), u32{2});
  EXPECT_TRUE(recorder.pieceIs(0, "a\n"));
  EXPECT_TRUE(recorder.pieceIs(1, "b\n"));
}

TEST_F(TraceLines, EachNewlineIsALineOfItsOwn) {
  trace.put("\n\nx\n");
  EXPECT_EQ(recorder.pieceCount(), u32{3});
  EXPECT_TRUE(recorder.pieceIs(0, "\n"));
  EXPECT_TRUE(recorder.pieceIs(1, "\n"));
  EXPECT_TRUE(recorder.pieceIs(2, "x\n"));
}

TEST_F(TraceLines, OtherControlCharactersDoNotEndALine) {
  trace.put("a\r\t\v\fb");
  EXPECT_EQ(recorder.pieceCount(), u32{0});
  trace.endl();
  EXPECT_STREQ(recorder.text(), "a\r\t\v\fb\n");
}

TEST_F(TraceLines, ThreeHundredCharactersComeInTwoPieces) {
  putLetters(trace, 300);
  trace.endl();
  EXPECT_EQ(recorder.pieceCount(), u32{2});
  EXPECT_EQ(recorder.pieceLength(0), u32{255});
  EXPECT_EQ(recorder.pieceLength(1), u32{46});
  EXPECT_TRUE(isLetters(recorder.text(), 0, 300));
  EXPECT_EQ(recorder.text()[300], '\n');
}

TEST_F(TraceLines, LineOf253CharactersIsOnePiece) {
  putLetters(trace, kLongest - 2);
  trace.endl();
  EXPECT_EQ(recorder.pieceCount(), u32{1});
  EXPECT_EQ(recorder.pieceLength(0), kLongest - 1);
}

TEST_F(TraceLines, LineOf254CharactersAndItsNewlineFillTheBuffer) {
  putLetters(trace, kLongest - 1);
  EXPECT_EQ(recorder.pieceCount(), u32{0});
  trace.endl();
  EXPECT_EQ(recorder.pieceCount(), u32{1});
  EXPECT_EQ(recorder.pieceLength(0), kLongest);
  EXPECT_EQ(recorder.text()[kLongest - 1], '\n');
}

TEST_F(TraceLines, LineOf255CharactersLeavesItsNewlineToASecondPiece) {
  putLetters(trace, kLongest);
  EXPECT_EQ(recorder.pieceCount(), u32{1});
  trace.endl();
  EXPECT_EQ(recorder.pieceCount(), u32{2});
  EXPECT_EQ(recorder.pieceLength(0), kLongest);
  EXPECT_TRUE(recorder.pieceIs(1, "\n"));
}

TEST_F(TraceLines, LineOf256CharactersLosesNothing) {
  putLetters(trace, kLongest + 1);
  trace.endl();
  EXPECT_EQ(recorder.pieceCount(), u32{2});
  EXPECT_EQ(recorder.pieceLength(1), u32{2});
  EXPECT_TRUE(isLetters(recorder.text(), 0, kLongest + 1));
}

TEST_F(TraceLines, EveryLengthUpToFourBuffersArrivesWhole) {
  for (u32 length = 0; length <= 4 * kLongest + 1; ++length) {
    recorder.clear();
    putLetters(trace, length);
    trace.endl();
    EXPECT_EQ(recorder.length(), length + 1);
    EXPECT_EQ(recorder.pieceCount(), length / kLongest + 1);
    EXPECT_TRUE(isLetters(recorder.text(), 0, length));
  }
}

TEST_F(TraceLines, OneTextLongerThanTheBufferIsSplitLikeManyShortOnes) {
  static constinit char text[601] = {};
  for (u32 index = 0; index < 600; ++index) text[index] = static_cast<char>('a' + index % 26);
  trace.put(text).endl();
  EXPECT_EQ(recorder.pieceCount(), u32{3});
  EXPECT_EQ(recorder.pieceLength(0), kLongest);
  EXPECT_EQ(recorder.pieceLength(1), kLongest);
  EXPECT_EQ(recorder.pieceLength(2), u32{91});
  EXPECT_TRUE(isLetters(recorder.text(), 0, 600));
}

TEST_F(TraceLines, SplitCountsFromTheLastNewline) {
  putLetters(trace, 200);
  trace.put('\n');
  putLetters(trace, 254);
  EXPECT_EQ(recorder.pieceCount(), u32{1});
  trace.put('x');
  EXPECT_EQ(recorder.pieceCount(), u32{2});
  EXPECT_EQ(recorder.pieceLength(1), kLongest);
}

TEST_F(TraceLines, EmbeddedNulCharactersReachTheDestination) {
  trace.put("a\0\0", 3).put("b").endl();
  EXPECT_EQ(recorder.pieceCount(), u32{1});
  EXPECT_EQ(recorder.length(), u32{5});
  EXPECT_EQ(__builtin_memcmp(recorder.text(), "a\0\0b\n", 5), 0);
}

TEST_F(TraceLines, LineAfterOneWithNulCharactersIsWholeToo) {
  trace.put("\0", 1).endl();
  trace.put("next").endl();
  EXPECT_EQ(recorder.pieceCount(), u32{2});
  EXPECT_TRUE(recorder.pieceIs(1, "next\n"));
}

TEST_F(TraceLines, EveryPieceIsHandedOverByItsLength) {
  trace.put("before").endl();
  trace.put("\0", 1).endl();
  putLetters(trace, 256);
  EXPECT_STREQ(recorder.events(), "put put put ");
}

TEST_F(TraceLines, DisabledStreamDropsTextAndLineEnds) {
  trace.disable();
  trace.put("hidden").put(5, 10).put("x", 1).put(&recorder, 16, 4).endl();
  EXPECT_EQ(recorder.pieceCount(), u32{0});
  trace.enable();
  trace.put("shown").endl();
  EXPECT_STREQ(recorder.text(), "shown\n");
}

TEST_F(TraceLines, TextBufferedBeforeDisablingHeadsTheNextShownLine) {
  trace.put("kept ");
  trace.disable();
  trace.put("dropped").endl();
  trace.enable();
  trace.put("shown").endl();
  EXPECT_STREQ(recorder.text(), "kept shown\n");
}

TEST_F(TraceLines, DisablingDropsTheLineEndOfAStartedLine) {
  trace.put("started");
  trace.disable();
  trace.endl();
  EXPECT_EQ(recorder.pieceCount(), u32{0});
}

TEST_F(TraceLines, RejectedLineIsDroppedWhole) {
  openLine(trace, 99);
  trace.put("hidden").put(1, 10).endl();
  EXPECT_EQ(recorder.pieceCount(), u32{0});
}

TEST_F(TraceLines, EndOfARejectedLineClearsTheRejection) {
  openLine(trace, 99);
  trace.endl();
  trace.put("no prefix").endl();
  EXPECT_STREQ(recorder.text(), "no prefix\n");
}

TEST_F(TraceLines, NewlineInARejectedLineDoesNotClearTheRejection) {
  openLine(trace, 99);
  trace.put("a\nb\n").put("c").endl();
  EXPECT_EQ(recorder.pieceCount(), u32{0});
}

TEST_F(TraceLines, TextBufferedBeforeARejectedLineHeadsTheNextShownLine) {
  trace.put("kept ");
  openLine(trace, 99);
  trace.put("hidden").endl();
  openLine(trace, 100);
  trace.put("shown").endl();
  EXPECT_STREQ(recorder.text(), "kept shown\n");
}

TEST_F(TraceLines, EndOfARejectedLineIsKeptWhileDisabled) {
  openLine(trace, 99);
  trace.disable();
  trace.endl();
  trace.enable();
  trace.put("shown").endl();
  EXPECT_STREQ(recorder.text(), "shown\n");
}

TEST_F(TraceLines, DisabledStreamStillRecordsTheEndOfTheLine) {
  trace.configure(
      "--off --compname off --linenumber off --filename off --timedelta on "
      "--truncation off");
  trace.enable();
  trace.endl();
  u64 const begin = readTimeStampCounter();
  while (readTimeStampCounter() - begin < 20'000'000) {
  }
  trace.disable();
  u64 const beforeEnd = readTimeStampCounter();
  trace.endl();
  trace.enable();
  recorder.clear();
  openLine(trace, 100);
  trace.endl();
  u64 const limit = readTimeStampCounter() - beforeEnd;
  u64 delta = 0;
  for (char const* digit = recorder.text() + 1; *digit >= '0' && *digit <= '9'; ++digit) {
    delta = delta * 10 + static_cast<u64>(*digit - '0');
  }
  EXPECT_EQ(recorder.text()[0], '[');
  EXPECT_TRUE(delta <= limit);
}
