#include "conformance/harness.h"
#include "oxdiagk/tTrace.h"
#include "support/recordingDestination.h"

namespace {

using nOXDIAG100::tTrace;

// Bytes with the values 0, 1, 2 ...
u8 const* counting() {
  static constinit u8 bytes[512] = {};
  for (u32 index = 0; index < sizeof(bytes); ++index) bytes[index] = static_cast<u8>(index);
  return bytes;
}

constexpr u32 kAddressLength = 18;  // 16 digits, a colon and a blank

// A dump into a recorder.
struct tDump {
  tRecordingDestination recorder;
  tPrivateTrace trace{recorder};

  tDump(void const* bytes, u32 length, u32 unitSize) { trace.put(bytes, length, unitSize); }

  // The row with this index is `expected` behind its address, and that address is right.
  bool rowIs(u32 index, void const* address, char const* expected) const {
    if (index >= recorder.pieceCount()) return false;
    char const* text = recorder.text();
    for (u32 row = 0; row < index; ++row) text += recorder.pieceLength(row);
    u32 const length = recorder.pieceLength(index);
    return addressIs(text, reinterpret_cast<u64>(address)) &&
           length == kAddressLength + __builtin_strlen(expected) &&
           __builtin_memcmp(text + kAddressLength, expected, length - kAddressLength) == 0;
  }

  // The only row is `expected` behind the address of the first byte.
  bool is(void const* address, char const* expected) const {
    return recorder.pieceCount() == 1 && rowIs(0, address, expected);
  }

 private:
  static bool addressIs(char const* text, u64 address) {
    for (u32 index = 0; index < 16; ++index) {
      if (text[index] != "0123456789ABCDEF"[address >> (60 - 4 * index) & 0xF]) return false;
    }
    return text[16] == ':' && text[17] == ' ';
  }
};

// The row that the description of the dump gives, worked out byte by byte.
struct tModelRow {
  char text[96];
  u32 length = 0;

  void add(char character) {
    text[length++] = character;
    text[length] = 0;
  }

  void addByte(u8 byte) {
    add("0123456789ABCDEF"[byte >> 4]);
    add("0123456789ABCDEF"[byte & 15]);
  }

  void addMissing() {
    add('X');
    add('X');
  }

  tModelRow(u8 const* bytes, u32 remaining, u32 unit) {
    u32 const groups = 16 / unit;
    for (u32 group = 0; group < groups; ++group) {
      addGroup(bytes, remaining, group * unit, unit);
      add(' ');
    }
    add(':');
    add(' ');
    for (u32 index = 0; index < groups * unit && index < remaining; ++index) {
      add(bytes[index] >= 0x20 && bytes[index] <= 0x7E ? static_cast<char>(bytes[index]) : '.');
    }
    add('\n');
  }

 private:
  void addGroup(u8 const* bytes, u32 remaining, u32 first, u32 unit) {
    if (unit == 4 && first + 4 <= remaining) {
      for (u32 index = 4; index-- != 0;) addByte(bytes[first + index]);
    } else if (unit == 2 && first + 2 <= remaining) {
      addByte(bytes[first + 1]);
      addByte(bytes[first]);
    } else {
      for (u32 index = first; index < first + unit; ++index) {
        if (index < remaining) addByte(bytes[index]);
        if (index >= remaining) addMissing();
      }
    }
  }
};

void checkAgainstTheModel(u32 length, u32 unitSize) {
  u8 const* const bytes = counting() + 0x18;  // control characters first, then text
  tDump const dump(bytes, length, unitSize);
  u32 unit = unitSize < length ? unitSize : length;
  if (unit > 16) unit = 16;
  u32 const bytesPerRow = 16 / unit * unit;
  u32 rows = 0;
  for (u32 offset = 0; offset < length; offset += bytesPerRow) {
    tModelRow const row(bytes + offset, length - offset, unit);
    EXPECT_TRUE(dump.rowIs(rows, bytes + offset, row.text));
    ++rows;
  }
  EXPECT_EQ(dump.recorder.pieceCount(), rows);
}

}  // namespace

TEST(TraceHexDump, UnitOfOneShowsEachByte) {
  tDump const dump(counting() + 0x40, 16, 1);
  EXPECT_TRUE(dump.is(counting() + 0x40,
                      "40 41 42 43 44 45 46 47 48 49 4A 4B 4C 4D 4E 4F : @ABCDEFGHIJKLMNO\n"));
}

TEST(TraceHexDump, UnitOfTwoShowsLittleEndianNumbers) {
  tDump const dump(counting(), 16, 2);
  EXPECT_TRUE(dump.is(counting(), "0100 0302 0504 0706 0908 0B0A 0D0C 0F0E : ................\n"));
}

TEST(TraceHexDump, UnitOfFourShowsLittleEndianNumbers) {
  tDump const dump(counting(), 16, 4);
  EXPECT_TRUE(dump.is(counting(), "03020100 07060504 0B0A0908 0F0E0D0C : ................\n"));
}

TEST(TraceHexDump, UnitOfEightShowsBytesInMemoryOrder) {
  tDump const dump(counting(), 16, 8);
  EXPECT_TRUE(dump.is(counting(), "0001020304050607 08090A0B0C0D0E0F : ................\n"));
}

TEST(TraceHexDump, UnitOfSixteenShowsOneGroup) {
  tDump const dump(counting(), 16, 16);
  EXPECT_TRUE(dump.is(counting(), "000102030405060708090A0B0C0D0E0F : ................\n"));
}

TEST(TraceHexDump, MissingBytesOfTheLastRowAreMarkedInAllGroups) {
  tDump const dump(counting(), 5, 4);
  EXPECT_TRUE(dump.is(counting(), "03020100 04XXXXXX XXXXXXXX XXXXXXXX : .....\n"));
}

TEST(TraceHexDump, ShortTailOfAUnitOfTwoIsShownByteByByte) {
  tDump const dump(counting(), 3, 2);
  EXPECT_TRUE(dump.is(counting(), "0100 02XX XXXX XXXX XXXX XXXX XXXX XXXX : ...\n"));
}

TEST(TraceHexDump, UnitIsNotLargerThanTheLength) {
  tDump const dump(counting(), 3, 8);
  EXPECT_TRUE(dump.is(counting(), "000102 XXXXXX XXXXXX XXXXXX XXXXXX : ...\n"));
}

TEST(TraceHexDump, LengthOfFourMakesALargerUnitANumber) {
  tDump const dump(counting(), 4, 16);
  EXPECT_TRUE(dump.is(counting(), "03020100 XXXXXXXX XXXXXXXX XXXXXXXX : ....\n"));
}

TEST(TraceHexDump, UnitAboveSixteenCountsAsSixteen) {
  tDump const dump(counting(), 17, 0xFFFFFFFF);
  EXPECT_EQ(dump.recorder.pieceCount(), u32{2});
  EXPECT_TRUE(dump.rowIs(0, counting(), "000102030405060708090A0B0C0D0E0F : ................\n"));
  EXPECT_TRUE(dump.rowIs(1, counting() + 16, "10XXXXXXXXXXXXXXXXXXXXXXXXXXXXXX : .\n"));
}

TEST(TraceHexDump, UnitThatDoesNotDivideSixteenMakesShorterRows) {
  tDump const dump(counting(), 15, 6);
  EXPECT_EQ(dump.recorder.pieceCount(), u32{2});
  EXPECT_TRUE(dump.rowIs(0, counting(), "000102030405 060708090A0B : ............\n"));
  EXPECT_TRUE(dump.rowIs(1, counting() + 12, "0C0D0EXXXXXX XXXXXXXXXXXX : ...\n"));
}

TEST(TraceHexDump, UnitOfZeroCountsAsOne) {
  tDump const dump(counting() + 0x61, 1, 0);
  EXPECT_TRUE(dump.is(counting() + 0x61, "61 XX XX XX XX XX XX XX XX XX XX XX XX XX XX XX : a\n"));
}

TEST(TraceHexDump, RowsAreLinesOfTheirOwn) {
  tDump const dump(counting(), 33, 16);
  EXPECT_EQ(dump.recorder.pieceCount(), u32{3});
  EXPECT_TRUE(
      dump.rowIs(1, counting() + 16, "101112131415161718191A1B1C1D1E1F : ................\n"));
  EXPECT_TRUE(dump.rowIs(2, counting() + 32, "20XXXXXXXXXXXXXXXXXXXXXXXXXXXXXX :  \n"));
}

TEST(TraceHexDump, FullRowsLeaveNoEmptyRowBehind) {
  tDump const dump(counting(), 32, 4);
  EXPECT_EQ(dump.recorder.pieceCount(), u32{2});
}

TEST(TraceHexDump, OnlyPrintableAsciiIsShownAsCharacters) {
  u8 const bytes[] = {0x1F, 0x20, 0x7E, 0x7F, 0x80, 0xFF, 0x00, 0x0A};
  tDump const dump(bytes, sizeof(bytes), 8);
  EXPECT_TRUE(dump.is(bytes, "1F207E7F80FF000A XXXXXXXXXXXXXXXX : . ~.....\n"));
}

TEST(TraceHexDump, EachByteIsShownAtEachPlaceOfAWholeRow) {
  u8 bytes[16] = {};
  tDump dump(bytes, 0, 1);
  for (u32 value = 0; value < 256; ++value) {
    __builtin_memset(bytes, static_cast<int>(value), sizeof(bytes));
    dump.recorder.clear();
    dump.trace.put(static_cast<void const*>(bytes), sizeof(bytes), 1);
    EXPECT_TRUE(dump.is(bytes, tModelRow(bytes, sizeof(bytes), 1).text));
  }
}

TEST(TraceHexDump, NullAddressWritesNothing) {
  tDump const dump(nullptr, 16, 4);
  EXPECT_EQ(dump.recorder.pieceCount(), u32{0});
}

TEST(TraceHexDump, LengthOfZeroWritesNothing) {
  tDump const dump(counting(), 0, 4);
  EXPECT_EQ(dump.recorder.pieceCount(), u32{0});
}

TEST(TraceHexDump, FirstRowContinuesTheLine) {
  tRecordingDestination recorder;
  tPrivateTrace trace(recorder);
  trace.put("reply ").put(counting(), 17, 16).put("rest").endl();
  EXPECT_EQ(recorder.pieceCount(), u32{3});
  EXPECT_EQ(__builtin_memcmp(recorder.text(), "reply 0", 7), 0);
  EXPECT_EQ(recorder.pieceLength(0), u32{6 + 18 + 33 + 2 + 16 + 1});
  EXPECT_TRUE(recorder.pieceIs(2, "rest\n"));
}

TEST(TraceHexDump, ChangeableMemoryIsDumpedLikeConstantMemory) {
  u8 bytes[4] = {0x61, 0x62, 0x63, 0x64};
  tRecordingDestination recorder;
  tPrivateTrace trace(recorder);
  trace.put(static_cast<void*>(bytes), 4, 1).put(static_cast<void const*>(bytes), 4, 1);
  EXPECT_EQ(recorder.pieceCount(), u32{2});
  EXPECT_EQ(recorder.pieceLength(0), recorder.pieceLength(1));
  EXPECT_EQ(__builtin_memcmp(recorder.text(), recorder.text() + recorder.pieceLength(0),
                             recorder.pieceLength(0)),
            0);
}

TEST(TraceHexDump, EveryLengthAndUnitAgreesWithTheModel) {
  for (u32 unitSize = 1; unitSize <= 18; ++unitSize) {
    for (u32 length = 1; length <= 50; ++length) checkAgainstTheModel(length, unitSize);
  }
}
