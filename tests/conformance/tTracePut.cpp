// The put family, but for numbers and hex dumps.

#include "conformance/harness.h"
#include "oxdiagk/iTraceable.h"
#include "oxdiagk/tStatus2.h"
#include "oxdiagk/tTrace.h"
#include "support/recordingDestination.h"

namespace {

using nOXDIAG100::iTraceable;
using nOXDIAG100::tStatus2;
using nOXDIAG100::tTrace;

// A stream into a recorder, and what arrived there once the line is ended.
struct tLine {
  tRecordingDestination recorder;
  tPrivateTrace trace{recorder};

  char const* end() {
    trace.endl();
    return recorder.text();
  }
};

class tTwoValues : public iTraceable {
 public:
  void put(tTrace& trace) const override {
    trace.put("two(").put(1, 10).put(",").put(2, 10).put(")");
  }
};

class tNested : public iTraceable {
 public:
  void put(tTrace& trace) const override { trace.put("<").put(tTwoValues()).put(">"); }
};

}  // namespace

TEST(TracePut, TextIsPutUpToItsTerminator) {
  tLine line;
  line.trace.put("abc\0def");
  EXPECT_STREQ(line.end(), "abc\n");
}

TEST(TracePut, EmptyTextPutsNothing) {
  tLine line;
  line.trace.put("").put("", 0);
  EXPECT_STREQ(line.end(), "\n");
}

TEST(TracePut, NullTextPutsNothing) {
  tLine line;
  line.trace.put(static_cast<char const*>(nullptr)).put(static_cast<char const*>(nullptr), 5);
  EXPECT_STREQ(line.end(), "\n");
}

TEST(TracePut, CountedTextIsPutToItsCount) {
  tLine line;
  line.trace.put("abcdef", 3);
  EXPECT_STREQ(line.end(), "abc\n");
}

TEST(TracePut, CountOfZeroPutsNothing) {
  tLine line;
  line.trace.put("abc", 0);
  EXPECT_STREQ(line.end(), "\n");
}

TEST(TracePut, CountedTextKeepsNulCharacters) {
  tLine line;
  line.trace.put("a\0\0", 3);
  line.trace.endl();
  EXPECT_EQ(line.recorder.length(), u32{4});
  EXPECT_EQ(__builtin_memcmp(line.recorder.text(), "a\0\0\n", 4), 0);
}

TEST(TracePut, PercentSignsAreText) {
  tLine line;
  line.trace.put("100%s %d %%");
  EXPECT_STREQ(line.end(), "100%s %d %%\n");
}

TEST(TracePut, BytesAboveAsciiAreText) {
  tLine line;
  line.trace.put("\x80\xFF\xE4");
  EXPECT_STREQ(line.end(), "\x80\xFF\xE4\n");
}

TEST(TracePut, NarrowStringIsPutUpToItsFirstNul) {
  _STL::string text;
  ASSERT_TRUE(text.append("ab\0cd", 5));
  tLine line;
  line.trace.put(text);
  EXPECT_STREQ(line.end(), "ab\n");
}

TEST(TracePut, EmptyStringsPutNothing) {
  tLine line;
  line.trace.put(_STL::string()).put(_STL::wstring());
  EXPECT_STREQ(line.end(), "\n");
}

TEST(TracePut, WideStringIsPutAsTheLowBytesOfItsUnits) {
  _STL::wstring text;
  ASSERT_TRUE(text.append(L"Slot \x0141\x20AC\x00E9"));
  tLine line;
  line.trace.put(text);
  EXPECT_STREQ(line.end(), "Slot \x41\xAC\xE9\n");
}

TEST(TracePut, WideStringIsPutToItsSizeNotToItsFirstNul) {
  _STL::wstring text;
  ASSERT_TRUE(text.append(L"a\0\x0100z", 4));
  tLine line;
  line.trace.put(text);
  line.trace.endl();
  EXPECT_EQ(line.recorder.length(), u32{5});
  EXPECT_EQ(__builtin_memcmp(line.recorder.text(), "a\0\0z\n", 5), 0);
}

TEST(TracePut, CharactersOfEverySignednessArePutAsTheyAre) {
  tLine line;
  line.trace.put('a');
  line.trace.put(static_cast<signed char>('b'));
  line.trace.put(static_cast<unsigned char>('c'));
  line.trace.put(static_cast<signed char>(-1));
  line.trace.put(static_cast<unsigned char>(0x80));
  EXPECT_STREQ(line.end(), "abc\xFF\x80\n");
}

TEST(TracePut, NewlineCharacterEndsTheLine) {
  tLine line;
  line.trace.put("a").put('\n');
  EXPECT_EQ(line.recorder.pieceCount(), u32{1});
  EXPECT_STREQ(line.recorder.text(), "a\n");
}

TEST(TracePut, TruthIsPutAsAWordAndANumber) {
  tLine line;
  line.trace.put(true).put(" ").put(false);
  EXPECT_STREQ(line.end(), "true(1) false(0)\n");
}

TEST(TracePut, AddressIsPutInRadix16WithoutLeadingZeros) {
  tLine line;
  line.trace.put(reinterpret_cast<void const*>(u64{0xFFFF80001234ABCD}));
  line.trace.put(" ").put(reinterpret_cast<void const*>(u64{0x1F}));
  EXPECT_STREQ(line.end(), "0xFFFF80001234ABCD 0x1F\n");
}

TEST(TracePut, NullAddressIsPutAsZero) {
  tLine line;
  line.trace.put(static_cast<void const*>(nullptr));
  EXPECT_STREQ(line.end(), "0x0\n");
}

TEST(TracePut, PointerToAnythingIsPutAsItsAddress) {
  tLine line;
  i32* const pointer = reinterpret_cast<i32*>(u64{0x10});
  line.trace.put(pointer);
  EXPECT_STREQ(line.end(), "0x10\n");
}

TEST(TracePut, PointerToSomethingVolatileIsPutAsItsAddress) {
  tLine line;
  line.trace.put(reinterpret_cast<i32 volatile*>(u64{0x10})).put(" ");
  line.trace.put(reinterpret_cast<u8 const volatile*>(u64{0x20})).put(" ");
  line.trace.put(static_cast<void volatile*>(nullptr)).put(" ");
  line.trace.put(reinterpret_cast<char volatile*>(u64{0x30}));
  EXPECT_STREQ(line.end(), "0x10 0x20 0x0 0x30\n");
}

TEST(TracePut, PointerToAFunctionIsPutAsItsAddress) {
  tLine line;
  line.trace.put(reinterpret_cast<i32 (*)(char const*)>(u64{0x10}));
  EXPECT_STREQ(line.end(), "0x10\n");
}

TEST(TracePut, WideTextIsPutAsTheLowBytesOfItsUnitsUpToItsTerminator) {
  tLine line;
  wchar_t changeable[] = L"Slot \x0141\x20AC\x00E9\0behind";
  line.trace.put(L"a\x0142z").put(" ").put(changeable);
  EXPECT_STREQ(line.end(), "aBz Slot \x41\xAC\xE9\n");
}

TEST(TracePut, NullWideTextPutsNothing) {
  tLine line;
  line.trace.put(static_cast<wchar_t const*>(nullptr)).put(L"");
  EXPECT_STREQ(line.end(), "\n");
}

TEST(TracePut, AUnitOfWideTextWithoutALowByteIsANulCharacter) {
  tLine line;
  line.trace.put(L"a\x0100z").endl();
  EXPECT_EQ(line.recorder.length(), u32{4});
  EXPECT_EQ(__builtin_memcmp(line.recorder.text(), "a\0z\n", 4), 0);
}

TEST(TracePut, WideTextOfEveryLengthUpToTwoBuffersArrivesWhole) {
  static constinit wchar_t text[512] = {};
  for (u32 index = 0; index < 511; ++index)
    text[index] = static_cast<wchar_t>(0x4100 + 'a' + index % 26);
  tLine line;
  for (u32 length = 0; length < 511; ++length) {
    line.recorder.clear();
    line.trace.put(text + (511 - length)).endl();
    EXPECT_EQ(line.recorder.length(), length + 1);
    bool isRight = true;
    for (u32 index = 0; index < length; ++index) {
      isRight = isRight &&
                line.recorder.text()[index] == static_cast<char>('a' + (511 - length + index) % 26);
    }
    EXPECT_TRUE(isRight);
  }
}

TEST(TracePut, MemoryBlockIsPutAsItsAddress) {
  tMemBlockReferenceTemplate<char> block;
  i32 status = 0;
  block.allocate(8, kMemScratch, status);
  ASSERT_TRUE(status >= 0);
  tLine byBlock;
  byBlock.trace.put(block).put("|").put(static_cast<void const*>(block.get())).endl();
  char const* const text = byBlock.recorder.text();
  u32 const half = (byBlock.recorder.length() - 2) / 2;
  EXPECT_EQ(__builtin_memcmp(text, "0x", 2), 0);
  EXPECT_EQ(text[half], '|');
  EXPECT_EQ(__builtin_memcmp(text, text + half + 1, half), 0);
}

TEST(TracePut, MissingMemoryBlockIsPutAsZero) {
  tMemBlockReferenceTemplate<char> block;
  tLine line;
  line.trace.put(block);
  EXPECT_STREQ(line.end(), "0x0\n");
}

TEST(TracePut, VersionIsPutAsItsText) {
  tLine line;
  line.trace.put(tSSVersion(1, 0, 0, tSSVersion::kPhaseReleased, 7, 0)).put(" ");
  line.trace.put(tSSVersion(255, 15, 15, tSSVersion::kPhaseReleased, 4095, 0));
  EXPECT_STREQ(line.end(), "1.0.0f7 255.15.15f4095\n");
}

TEST(TracePut, StatusIsPutAsItsTextAndEndsTheLineItIsPutInto) {
  tLine line;
  tStatus2 const status(-50352);
  line.trace.put("failed: ").put(status);
  EXPECT_STREQ(line.end(), "failed: \ntStatus2 Contents:\n\tError Code = -50352\n\n");
  EXPECT_TRUE(line.recorder.pieceIs(0, "failed: \n"));
}

TEST(TracePut, ChangeableStatusIsPutLikeAConstantOne) {
  tLine line;
  tStatus2 status(5);
  line.trace.put(status);
  EXPECT_STREQ(line.end(), "\ntStatus2 Contents:\n\tError Code = 5\n\n");
}

TEST(TracePut, TraceableObjectWritesItself) {
  tLine line;
  line.trace.put("x ").put(tTwoValues()).put(" y");
  EXPECT_STREQ(line.end(), "x two(1,2) y\n");
}

TEST(TracePut, TraceableObjectMayPutAnother) {
  tLine line;
  line.trace.put(tNested());
  EXPECT_STREQ(line.end(), "<two(1,2)>\n");
}
