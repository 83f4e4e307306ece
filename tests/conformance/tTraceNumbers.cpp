// Numbers in every radix, at the ends of every width.

#include "conformance/harness.h"
#include "oxdiagk/tTrace.h"
#include "support/recordingDestination.h"

namespace {

using nOXDIAG100::tTrace;

constexpr u32 kLeastRadix = 2;
constexpr u32 kMostRadix = 36;

struct tText {
  char characters[80];
  u32 length = 0;

  void add(char character) {
    characters[length++] = character;
    characters[length] = 0;
  }
};

char digitOf(u32 value) {
  return static_cast<char>(value < 10 ? '0' + value : 'A' + value - 10);
}

// The most significant power first: slow, and obviously right.
void addDigits(tText& text, u64 value, u32 radix) {
  u64 power = 1;
  while (value / power >= radix) power *= radix;
  for (; power != 0; power /= radix) {
    text.add(digitOf(static_cast<u32>(value / power)));
    value %= power;
  }
}

tText expectedText(bool isNegative, u64 magnitude, u32 radix) {
  tText text;
  if (isNegative) text.add('-');
  if (radix == 16) {
    text.add('0');
    text.add('x');
  } else if (radix != 10) {
    addDigits(text, radix, 10);
    text.add('#');
  }
  addDigits(text, magnitude, radix);
  text.add('\n');
  return text;
}

// Puts `value` in every radix and compares with the text of its sign and magnitude.
template <class T>
void checkEveryRadix(T value, bool isNegative, u64 magnitude) {
  tRecordingDestination recorder;
  tPrivateTrace trace(recorder);
  for (u32 radix = kLeastRadix; radix <= kMostRadix; ++radix) {
    recorder.clear();
    trace.put(value, radix).endl();
    tText const expected = expectedText(isNegative, magnitude, radix);
    EXPECT_STREQ(recorder.text(), expected.characters);
  }
}

template <class T>
void checkUnsigned(T most) {
  checkEveryRadix(T{0}, false, 0);
  checkEveryRadix(T{1}, false, 1);
  checkEveryRadix(static_cast<T>(most / 2), false, most / 2);
  checkEveryRadix(static_cast<T>(most - 1), false, most - 1);
  checkEveryRadix(most, false, most);
}

template <class T>
void checkSigned(T most) {
  T const least = static_cast<T>(-most - 1);
  u64 const magnitude = static_cast<u64>(most);
  checkEveryRadix(T{0}, false, 0);
  checkEveryRadix(static_cast<T>(-1), true, 1);
  checkEveryRadix(most, false, magnitude);
  checkEveryRadix(static_cast<T>(-most), true, magnitude);
  checkEveryRadix(least, true, magnitude + 1);
}

void checkText(tTrace& trace, tRecordingDestination& recorder, char const* expected) {
  trace.endl();
  EXPECT_STREQ(recorder.text(), expected);
  recorder.clear();
}

class TraceNumbers : public tRecordedStream {};

}  // namespace

TEST(TraceNumbersInEveryRadix, UnsignedShortIsRightInEveryRadix) {
  checkUnsigned<unsigned short>(0xFFFF);
}

TEST(TraceNumbersInEveryRadix, UnsignedIntIsRightInEveryRadix) {
  checkUnsigned<unsigned int>(0xFFFFFFFF);
}

TEST(TraceNumbersInEveryRadix, UnsignedLongIsRightInEveryRadix) {
  checkUnsigned<unsigned long>(static_cast<unsigned long>(-1));
}

TEST(TraceNumbersInEveryRadix, UnsignedLongLongIsRightInEveryRadix) {
  checkUnsigned<unsigned long long>(0xFFFFFFFFFFFFFFFF);
}

TEST(TraceNumbersInEveryRadix, ShortIsRightInEveryRadix) {
  checkSigned<short>(0x7FFF);
}

TEST(TraceNumbersInEveryRadix, IntIsRightInEveryRadix) {
  checkSigned<int>(0x7FFFFFFF);
}

TEST(TraceNumbersInEveryRadix, LongIsRightInEveryRadix) {
  checkSigned<long>(static_cast<long>(static_cast<unsigned long>(-1) / 2));
}

TEST(TraceNumbersInEveryRadix, LongLongIsRightInEveryRadix) {
  checkSigned<long long>(0x7FFFFFFFFFFFFFFF);
}

TEST(TraceNumbersInEveryRadix, PowersOfTheRadixAndTheirNeighboursAreRight) {
  for (u32 radix = kLeastRadix; radix <= kMostRadix; ++radix) {
    tRecordingDestination recorder;
    tPrivateTrace trace(recorder);
    for (u64 power = radix;; power *= radix) {
      for (u64 value = power - 1; value <= power + 1; ++value) {
        recorder.clear();
        trace.put(value, radix).endl();
        tText const expected = expectedText(false, value, radix);
        EXPECT_STREQ(recorder.text(), expected.characters);
      }
      if (power > 0xFFFFFFFFFFFFFFFF / radix) break;
    }
  }
}

TEST_F(TraceNumbers, DocumentedExamplesAreRight) {
  trace.put(255u, 16);
  checkText(trace, recorder, "0xFF\n");
  trace.put(255u, 10);
  checkText(trace, recorder, "255\n");
  trace.put(5u, 2);
  checkText(trace, recorder, "2#101\n");
  trace.put(8u, 8);
  checkText(trace, recorder, "8#10\n");
  trace.put(-26, 16);
  checkText(trace, recorder, "-0x1A\n");
  trace.put(0u, 16);
  checkText(trace, recorder, "0x0\n");
}

TEST_F(TraceNumbers, SixtyFourBitExtremesAreRight) {
  i64 const least = -0x7FFFFFFFFFFFFFFF - 1;
  trace.put(least, 10);
  checkText(trace, recorder, "-9223372036854775808\n");
  trace.put(least, 16);
  checkText(trace, recorder, "-0x8000000000000000\n");
  trace.put(least, 2);
  checkText(trace, recorder,
            "-2#1000000000000000000000000000000000000000000000000000000000000000\n");
  trace.put(u64{0xFFFFFFFFFFFFFFFF}, 36);
  checkText(trace, recorder, "36#3W5E11264SGSF\n");
}

TEST_F(TraceNumbers, DigitsAboveNineAreCapitalLetters) {
  trace.put(35u, 36).put(" ").put(0xABCDEFu, 16).put(" ").put(19u, 20);
  checkText(trace, recorder, "36#Z 0xABCDEF 20#J\n");
}

TEST_F(TraceNumbers, RadixBelowTwoCountsAsTen) {
  for (u32 radix = 0; radix < kLeastRadix; ++radix) {
    trace.put(-123, radix).put(" ").put(u64{0xFFFFFFFFFFFFFFFF}, radix);
    checkText(trace, recorder, "-123 18446744073709551615\n");
  }
}

TEST_F(TraceNumbers, RadixAboveThirtySixIsWrittenLikeEveryOther) {
  trace.put(5u, 100).put(" ").put(-5, 100).put(" ").put(0u, 37);
  checkText(trace, recorder, "100#5 -100#5 37#0\n");
  trace.put(12'345u, 100).put(" ").put(u64{0xFFFFFFFF}, 0xFFFFFFFF).put(" ").put(7u, 0xFFFFFFFF);
  checkText(trace, recorder, "100#1Nd 4294967295#10 4294967295#7\n");
}

TEST_F(TraceNumbers, DigitsGoOnBehindZInTheOrderOfTheCharacterSet) {
  trace.put(36u, 37).put(" ").put(37u, 38).put(" ").put(99u, 100).put(" ").put(-61, 62);
  checkText(trace, recorder, "37#[ 38#\\ 100#\x9A -62#t\n");
}

TEST_F(TraceNumbers, EveryRadixThatHasADigitOfItsOwnForEachValueIsRight) {
  u64 const values[] = {0, 1, 200, 201, 0xFFFFFFFF, 0x7FFFFFFFFFFFFFFF, 0xFFFFFFFFFFFFFFFF};
  for (u32 radix = kMostRadix + 1; radix <= 201; ++radix) {
    for (u64 const value : values) {
      recorder.clear();
      trace.put(value, radix).endl();
      tText const expected = expectedText(false, value, radix);
      EXPECT_STREQ(recorder.text(), expected.characters);
    }
  }
}

TEST_F(TraceNumbers, ADigitBehindTheLastCharacterIsACharacterFromTheFirstOn) {
  trace.put(200u, 1'000).put(201u, 1'000).put(202u, 1'000).endl();
  EXPECT_EQ(recorder.length(), u32{3 * 6 + 1});
  EXPECT_EQ(__builtin_memcmp(recorder.text(),
                             "1000#\xFF"
                             "1000#\0"
                             "1000#\x01\n",
                             19),
            0);
}

TEST_F(TraceNumbers, KernelIntegerTypesHaveTheirOverloads) {
  trace.put(i16{-1}, 10).put(u16{1}, 10).put(i32{-2}, 10).put(u32{2}, 10);
  trace.put(i64{-3}, 10).put(u64{3}, 10).put(size_t{4}, 10);
  checkText(trace, recorder, "-11-22-334\n");
}

TEST_F(TraceNumbers, NumberIsSplitAtTheEndOfTheBufferLikeText) {
  for (u32 index = 0; index < 253; ++index) trace.put('.');
  trace.put(12345, 10).endl();
  EXPECT_EQ(recorder.pieceCount(), u32{2});
  EXPECT_EQ(recorder.pieceLength(0), u32{255});
  EXPECT_TRUE(recorder.pieceIs(1, "345\n"));
}
