#include "oxdiagk/tLineBuffer.h"

#include "conformance/harness.h"
#include "oxdiagk/tDestinationSlot.h"
#include "support/recordingDestination.h"

namespace {

using nOXDIAG100::tLineBuffer;

constexpr u32 kCapacity = tLineBuffer::kCapacity;
constexpr u32 kCopied = tLineBuffer::kCopied;
constexpr u32 kClosing = 2;

// A buffer in front of a record, and text for it: letters that differ from their neighbours.
struct tBufferedLine {
  tBufferedLine() {
    for (u32 index = 0; index < sizeof(letters); ++index) {
      letters[index] = static_cast<char>('a' + index % 26);
    }
  }

  void append(char const* text, u32 length) { buffer.append(text, length, slot); }
  void fill(u32 length) { append(letters, length); }
  bool pieceIs(u32 piece, char const* text, u32 length) const {
    u32 begin = 0;
    for (u32 index = 0; index < piece; ++index) begin += record.pieceLength(index);
    return piece < record.pieceCount() && record.pieceLength(piece) == length &&
           __builtin_memcmp(record.text() + begin, text, length) == 0;
  }

  tRecordingDestination record;
  nOXDIAG100::iTraceDestination* current = &record;
  nOXDIAG100::tDestinationSlot slot{current};
  tLineBuffer buffer;
  char letters[2 * tLineBuffer::kSize];
};

// Of texts of each length from 0 to 20, with a newline at each of their places: what was appended
// arrives whole, and each newline ends a piece.
u32 countWrongNewlines(u32 length) {
  u32 wrong = 0;
  for (u32 place = 0; place < length; ++place) {
    tBufferedLine line;
    line.letters[place] = '\n';
    line.fill(length);
    line.buffer.endPiece(line.slot);
    bool const isFirst = line.pieceIs(0, line.letters, place + 1);
    line.letters[length] = '\n';
    bool const isSecond = line.pieceIs(1, line.letters + place + 1, length - place);
    if (!isFirst || !isSecond || line.record.pieceCount() != 2) ++wrong;
  }
  return wrong;
}

// A prefix of `length` in front of which the buffer has `before` characters.
bool isPrefixRight(u32 before, u32 length) {
  tBufferedLine line;
  line.fill(before);
  bool const isTaken = line.buffer.appendPrefix(line.letters, length);
  line.buffer.endPiece(line.slot);
  u32 const total = before + (isTaken ? length + kClosing : 0) + 1;
  char const* const text = line.record.text();
  if (line.record.pieceCount() != 1 || line.record.length() != total) return false;
  if (text[total - 1] != '\n') return false;
  if (!isTaken) return before + kCopied + kClosing >= kCapacity;
  return before + kCopied + kClosing < kCapacity && text[total - 2] == ' ' &&
         text[total - 3] == ']' && __builtin_memcmp(text, line.letters, before) == 0 &&
         __builtin_memcmp(text + before, line.letters, length) == 0;
}

}  // namespace

TEST(LineBuffer, AWholeLineGoesOutAtOnce) {
  tBufferedLine line;
  line.letters[kCapacity - 1] = '\n';
  line.buffer.appendLine(line.letters, kCapacity, line.slot);
  EXPECT_EQ(u32{1}, line.record.pieceCount());
  EXPECT_TRUE(line.pieceIs(0, line.letters, kCapacity));
  EXPECT_EQ(u64{0}, line.buffer.getLength());
}

TEST(LineBuffer, AWholeLineStaysBehindWhatIsInFrontOfIt) {
  tBufferedLine line;
  line.letters[9] = '\n';
  line.fill(4);
  line.buffer.appendLine(line.letters + 4, 6, line.slot);
  EXPECT_EQ(u32{1}, line.record.pieceCount());
  EXPECT_TRUE(line.pieceIs(0, line.letters, 10));
}

TEST(LineBuffer, AWholeLineThatDoesNotFitFillsThePieceAndIsTheNext) {
  tBufferedLine line;
  line.letters[kCapacity + 9] = '\n';
  line.fill(kCapacity - 4);
  line.buffer.appendLine(line.letters + kCapacity - 4, 14, line.slot);
  EXPECT_EQ(u32{2}, line.record.pieceCount());
  EXPECT_TRUE(line.pieceIs(0, line.letters, kCapacity));
  EXPECT_TRUE(line.pieceIs(1, line.letters + kCapacity, 10));
}

TEST(LineBuffer, ALineStaysUntilItIsEnded) {
  tBufferedLine line;
  line.fill(kCapacity - 1);
  EXPECT_EQ(u32{0}, line.record.pieceCount());
  line.buffer.endPiece(line.slot);
  line.letters[kCapacity - 1] = '\n';
  EXPECT_TRUE(line.pieceIs(0, line.letters, kCapacity));
  EXPECT_EQ(u32{1}, line.record.pieceCount());
}

TEST(LineBuffer, AFullPieceGoesAtOnce) {
  tBufferedLine line;
  line.fill(kCapacity);
  EXPECT_TRUE(line.pieceIs(0, line.letters, kCapacity));
  line.buffer.endPiece(line.slot);
  EXPECT_TRUE(line.pieceIs(1, "\n", 1));
  EXPECT_EQ(u32{2}, line.record.pieceCount());
}

TEST(LineBuffer, OneCharacterMoreBeginsTheNextPiece) {
  tBufferedLine line;
  line.fill(kCapacity + 1);
  EXPECT_EQ(u32{1}, line.record.pieceCount());
  line.buffer.endPiece(line.slot);
  line.letters[kCapacity + 1] = '\n';
  EXPECT_TRUE(line.pieceIs(0, line.letters, kCapacity));
  EXPECT_TRUE(line.pieceIs(1, line.letters + kCapacity, 2));
}

TEST(LineBuffer, ANewlineInTheLastPlaceEndsOnePiece) {
  tBufferedLine line;
  line.letters[kCapacity - 1] = '\n';
  line.fill(kCapacity);
  EXPECT_TRUE(line.pieceIs(0, line.letters, kCapacity));
  EXPECT_EQ(u32{1}, line.record.pieceCount());
}

TEST(LineBuffer, ANewlineBehindTheLastPlaceIsAPiece) {
  tBufferedLine line;
  line.letters[kCapacity] = '\n';
  line.fill(kCapacity + 1);
  EXPECT_TRUE(line.pieceIs(0, line.letters, kCapacity));
  EXPECT_TRUE(line.pieceIs(1, "\n", 1));
  EXPECT_EQ(u32{2}, line.record.pieceCount());
}

TEST(LineBuffer, ShortTextArrivesWholeAtEachLength) {
  for (u32 length = 0; length <= 20; ++length) {
    tBufferedLine line;
    line.fill(length);
    line.fill(length);
    line.buffer.endPiece(line.slot);
    EXPECT_EQ(2 * length + 1, line.record.length());
    EXPECT_EQ(0, __builtin_memcmp(line.record.text(), line.letters, length));
    EXPECT_EQ(0, __builtin_memcmp(line.record.text() + length, line.letters, length));
  }
}

TEST(LineBuffer, ANewlineEndsThePieceAtEachPlace) {
  for (u32 length = 1; length <= 20; ++length) EXPECT_EQ(u32{0}, countWrongNewlines(length));
}

TEST(LineBuffer, EachOfSeveralNewlinesIsAPiece) {
  tBufferedLine line;
  line.append("\n\na\n\nbc\n", 8);
  EXPECT_EQ(u32{5}, line.record.pieceCount());
  EXPECT_TRUE(line.pieceIs(2, "a\n", 2));
  EXPECT_TRUE(line.pieceIs(3, "\n", 1));
  EXPECT_TRUE(line.pieceIs(4, "bc\n", 3));
}

TEST(LineBuffer, NulAndWhatLooksLikeANewlineAreText) {
  tBufferedLine line;
  char const text[] = "\0\x0B\x09\x8A\x0A\x0B\0\x1A\x0A";
  line.append(text, sizeof(text) - 1);
  EXPECT_EQ(u32{2}, line.record.pieceCount());
  EXPECT_TRUE(line.pieceIs(0, text, 5));
  EXPECT_TRUE(line.pieceIs(1, text + 5, 4));
}

TEST(LineBuffer, APrefixIsTakenOnlyWhereItsWordsHaveRoom) {
  u32 const least = kCapacity - kCopied - kClosing;
  for (u32 before = least - 2; before <= least + 2; ++before) {
    EXPECT_TRUE(isPrefixRight(before, 0));
    EXPECT_TRUE(isPrefixRight(before, 1));
    EXPECT_TRUE(isPrefixRight(before, kCopied));
  }
}

TEST(LineBuffer, APrefixHasEachLength) {
  for (u32 length = 0; length <= kCopied; ++length) EXPECT_TRUE(isPrefixRight(0, length));
}
