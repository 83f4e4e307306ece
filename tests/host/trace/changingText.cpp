// Text that somebody changes while it is put: what arrives is some of both, and never more than was
// put.

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <string>
#include <vector>

#include "keptLines.h"
#include "oxdiagk/tDestinationSlot.h"
#include "oxdiagk/tLineBuffer.h"
#include "racingThreads.h"
#include "rounds.h"
#include "tInterruption.h"

namespace {

constexpr u32 kTextSize = 200;
constexpr u32 kPuts = roundsOf(800'000);
constexpr size_t kLongestPiece = 255;

// A text in a longer one, so that whoever reads on finds no newline soon.
constinit char changing[4096] = {};

void changeNewline(std::atomic<bool> const& isOver) {
  while (!isOver) {
    for (char const character : {'\n', 'x'}) {
      __atomic_store_n(&changing[kTextSize - 50], character, __ATOMIC_RELAXED);
      for (u32 pause = 0; pause < 20; ++pause) __builtin_ia32_pause();
    }
  }
}

// Keeps no text, only what is wrong with it.
class tMeasuredPieces : public tKeptLines {
 public:
  u64 characters = 0;
  size_t longest = 0;
  u64 withoutEnd = 0;

  iTraceDestination& put(char const* text, unsigned int length) override {
    characters += length;
    longest = std::max<size_t>(longest, length);
    if (length == 0 || (length != kLongestPiece && text[length - 1] != '\n')) ++withoutEnd;
    return *this;
  }
};

}  // namespace

TEST(ChangingText, ANewlineThatVanishesWhileItIsPutEndsNothingElse) {
  std::fill(std::begin(changing), std::end(changing), 'x');
  tMeasuredPieces pieces;
  tOwnTrace trace(pieces);
  std::atomic<bool> isOver = false;
  std::atomic<bool> isWriter = true;
  runAtOnce(2, [&] {
    if (!isWriter.exchange(false)) return changeNewline(isOver);
    for (u32 round = 0; round < kPuts; ++round) trace.put(changing, kTextSize).endl();
    isOver = true;
  });
  EXPECT_EQ(u64{kPuts} * (kTextSize + 1), pieces.characters);
  EXPECT_LE(pieces.longest, kLongestPiece);
  EXPECT_EQ(u64{0}, pieces.withoutEnd);
}

// The five characters of the second piece are read as two words, which have three in common.
TEST(ChangingText, ANewlineThatVanishesBetweenTwoReadingsIsText) {
  using nOXDIAG100::tLineBuffer;
  std::string const first(tLineBuffer::kCapacity, '-');
  tPages const memory(2);
  char* const second = memory.at(tPages::kPage - 4);
  char* const text = second - first.size();
  std::memcpy(text, first.data(), first.size());
  std::memcpy(second, "abc\nd", 5);
  tInterruption const within(memory.at(tPages::kPage), 1, [second] { second[3] = 'x'; });
  tKeptLines kept;
  nOXDIAG100::iTraceDestination* current = &kept;
  nOXDIAG100::tDestinationSlot slot(current);
  tLineBuffer buffer;
  buffer.append(text, first.size() + 5, slot);
  buffer.endPiece(slot);
  EXPECT_EQ(kept.pieces, (std::vector<std::string>{first, "abcxd\n"}));
}
