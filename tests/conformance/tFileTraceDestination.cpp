// What the file destination writes, and when.

#include "oxdiagk/tFileTraceDestination.h"

#include "conformance/harness.h"
#include "oxdiagk/tTrace.h"
#include "oxdiagk/tVEXTraceDestination.h"
#include "support/fileDestination.h"

namespace {

using nOXDIAG100::iTraceDestination;
using nOXDIAG100::tFileTraceDestination;
using nOXDIAG100::tTrace;
using nOXDIAG100::tVEXTraceDestination;

constinit char longText[2048] = {};

// An open destination over a fresh test file.
struct tOpenFile {
  tFileTraceDestination destination;
  tDriveFile file{kTestPath};
  u32 opened;

  tOpenFile() {
    configureFile(destination, kTestName, "overwrite");
    opened = destination.open();
  }

  // True when the file holds exactly these bytes.
  template <u32 size>
  bool holds(char const (&bytes)[size]) {
    return file.read() && file.getLength() == size - 1 &&
           __builtin_memcmp(file.getText(), bytes, size - 1) == 0;
  }
};

// Writes `length` letters, and a line feed as the last byte if it is asked for.
void putLetters(tFileTraceDestination& destination, u32 length, bool endsWithLineFeed) {
  __builtin_memset(longText, 'x', sizeof(longText));
  if (endsWithLineFeed) longText[length - 1] = '\n';
  destination.put(longText, static_cast<unsigned int>(length));
}

bool areLetters(char const* text, u32 length) {
  for (u32 index = 0; index < length; ++index) {
    if (text[index] != 'x') return false;
  }
  return true;
}

}  // namespace

TEST(FileDestination, TextIsInTheFileAsSoonAsItIsPut) {
  tOpenFile open;
  ASSERT_EQ(open.opened, u32{1});
  open.destination.put("one ");
  EXPECT_TRUE(open.holds("one "));
  open.destination.put("two!", 3);
  EXPECT_TRUE(open.holds("one two"));
}

TEST(FileDestination, LineFeedBecomesCarriageReturnAndLineFeed) {
  tOpenFile open;
  open.destination.put("a\nb", 3);
  EXPECT_TRUE(open.holds("\x61\x0D\x0A\x62"));
}

TEST(FileDestination, EveryLineFeedIsTranslatedAndNothingElse) {
  tOpenFile open;
  open.destination.put("\n\n\r\n\t\x80\xFF");
  EXPECT_TRUE(open.holds("\r\n\r\n\r\r\n\t\x80\xFF"));
}

TEST(FileDestination, NulIsWrittenByACountedPut) {
  tOpenFile open;
  open.destination.put("a\0b\0", 4);
  EXPECT_TRUE(open.holds("a\0b\0"));
}

TEST(FileDestination, NulEndsTheTextOfAnUncountedPut) {
  tOpenFile open;
  open.destination.put("ab\0c");
  EXPECT_TRUE(open.holds("ab"));
}

TEST(FileDestination, EmptyTextsLeaveTheFileAsItIs) {
  tOpenFile open;
  open.destination.put("");
  open.destination.put("unseen", 0);
  open.destination.put(nullptr);
  open.destination.put(nullptr, 0);
  open.destination.put(nullptr, 7);
  EXPECT_TRUE(open.holds(""));
  open.destination.put("seen");
  EXPECT_TRUE(open.holds("seen"));
}

TEST(FileDestination, TextOf511BytesAndALineFeedArrivesWhole) {
  tOpenFile open;
  putLetters(open.destination, 512, true);
  ASSERT_TRUE(open.file.read());
  EXPECT_EQ(open.file.getLength(), u32{513});
  EXPECT_TRUE(areLetters(open.file.getText(), 511));
  EXPECT_STREQ(open.file.getText() + 511, "\r\n");
}

TEST(FileDestination, TextsAroundTheSizeOfABlockArriveWhole) {
  for (u32 length = 510; length <= 514; ++length) {
    tOpenFile open;
    putLetters(open.destination, length, false);
    ASSERT_TRUE(open.file.read());
    EXPECT_EQ(open.file.getLength(), length);
    EXPECT_TRUE(areLetters(open.file.getText(), length));
  }
}

TEST(FileDestination, TextOfManyBlocksArrivesInOrder) {
  tOpenFile open;
  for (u32 index = 0; index < sizeof(longText); ++index) {
    longText[index] = static_cast<char>('a' + index % 26);
  }
  open.destination.put(longText, sizeof(longText));
  ASSERT_TRUE(open.file.read());
  EXPECT_EQ(open.file.getLength(), u32{sizeof(longText)});
  EXPECT_EQ(__builtin_memcmp(open.file.getText(), longText, sizeof(longText)), 0);
}

TEST(FileDestination, PutReturnsTheDestination) {
  tOpenFile open;
  iTraceDestination& base = open.destination;
  EXPECT_TRUE(&base.put("x") == &base);
  EXPECT_TRUE(&base.put("x", 1) == &base);
  EXPECT_TRUE(&base.put(nullptr) == &base);
  base.close();
  EXPECT_TRUE(&base.put("x") == &base);
  EXPECT_TRUE(&base.put("x", 1) == &base);
}

TEST(FileDestination, WritingWhileClosedDoesNothing) {
  tOpenFile open;
  open.destination.put("before");
  open.destination.close();
  open.destination.put("unseen");
  open.destination.put("unseen", 6);
  EXPECT_TRUE(open.holds("before"));
}

TEST(FileDestination, WritingBeforeTheFirstOpenDoesNothing) {
  tDriveFile file(kTestPath);
  ASSERT_TRUE(file.write("kept"));
  tFileTraceDestination destination;
  configureFile(destination, kTestName, "overwrite");
  destination.put("unseen");
  destination.close();
  ASSERT_TRUE(file.read());
  EXPECT_STREQ(file.getText(), "kept");
}

TEST(FileDestination, ReopeningContinuesInTheModeOfTheConfiguration) {
  tOpenFile open;
  open.destination.put("dropped");
  open.destination.close();
  EXPECT_EQ(open.destination.open(), u32{1});
  EXPECT_TRUE(open.holds(""));
}

TEST(FileDestination, AppendingKeepsWhatIsInTheFile) {
  tDriveFile file(kTestPath);
  ASSERT_TRUE(file.write("kept "));
  tFileTraceDestination destination;
  configureFile(destination, kTestName);
  ASSERT_EQ(destination.open(), u32{1});
  destination.put("added");
  ASSERT_TRUE(file.read());
  EXPECT_STREQ(file.getText(), "kept added");
}

TEST(FileDestination, OverwritingDropsWhatIsInTheFile) {
  tDriveFile file(kTestPath);
  ASSERT_TRUE(file.write("dropped"));
  tOpenFile open;
  ASSERT_EQ(open.opened, u32{1});
  EXPECT_TRUE(open.holds(""));
  open.destination.put("new");
  EXPECT_TRUE(open.holds("new"));
}

TEST(FileDestination, NameAloneSwitchesBackToAppending) {
  tOpenFile open;
  open.destination.put("kept ");
  open.destination.close();
  configureFile(open.destination, kTestName);
  ASSERT_EQ(open.destination.open(), u32{1});
  open.destination.put("added");
  EXPECT_TRUE(open.holds("kept added"));
}

TEST(FileDestination, NoWordsSwitchBackToAppending) {
  tOpenFile open;
  open.destination.put("kept");
  open.destination.close();
  open.destination.configure(0, nullptr);
  ASSERT_EQ(open.destination.open(), u32{1});
  EXPECT_TRUE(open.holds("kept"));
}

TEST(FileDestination, LastModeCounts) {
  tDriveFile file(kTestPath);
  ASSERT_TRUE(file.write("kept"));
  tFileTraceDestination destination;
  configureFile(destination, "overwrite", kTestName, "append");
  EXPECT_EQ(destination.open(), u32{1});
  ASSERT_TRUE(file.read());
  EXPECT_STREQ(file.getText(), "kept");
  configureFile(destination, "append", "overwrite", kTestName);
  EXPECT_EQ(destination.open(), u32{1});
  ASSERT_TRUE(file.read());
  EXPECT_STREQ(file.getText(), "");
}

TEST(FileDestination, OthersMayReadAndWriteTheOpenFile) {
  tOpenFile open;
  open.destination.put("mine ");
  EXPECT_EQ(open.file.openAlone(), STATUS_SHARING_VIOLATION);
  EXPECT_TRUE(open.holds("mine "));
}

TEST(FileDestination, ClosingGivesTheFileUpAndMayBeRepeated) {
  tOpenFile open;
  open.destination.close();
  EXPECT_EQ(open.file.openAlone(), STATUS_SUCCESS);
  open.destination.close();
  EXPECT_EQ(open.destination.open(), u32{1});
  EXPECT_EQ(open.file.openAlone(), STATUS_SHARING_VIOLATION);
}

TEST(FileDestination, DestructionGivesTheFileUp) {
  {
    tOpenFile open;
    ASSERT_EQ(open.opened, u32{1});
  }
  EXPECT_EQ(tDriveFile(kTestPath).openAlone(), STATUS_SUCCESS);
}

TEST(FileDestination, DestroyedWhileCurrentSendsTheStreamToTheDebugger) {
  tTrace& trace = tTrace::getInstance();
  {
    tOpenFile open;
    trace.setDestination(open.destination);
    EXPECT_TRUE(trace.getDestination() == &open.destination);
  }
  EXPECT_TRUE(trace.getDestination() == &tVEXTraceDestination::getInstance());
  EXPECT_EQ(tDriveFile(kTestPath).openAlone(), STATUS_SUCCESS);
}

TEST(FileDestination, OpeningAnOpenFileOpensItAnew) {
  tOpenFile open;
  open.destination.put("kept ");
  configureFile(open.destination, kTestName);
  EXPECT_EQ(open.destination.open(), u32{1});
  open.destination.put("added");
  EXPECT_TRUE(open.holds("kept added"));
  open.destination.close();
  EXPECT_EQ(open.file.openAlone(), STATUS_SUCCESS);
}

TEST(FileDestination, ThereIsOneInstance) {
  tFileTraceDestination* const instance = tFileTraceDestination::getInstance();
  EXPECT_TRUE(instance != nullptr);
  EXPECT_TRUE(tFileTraceDestination::getInstance() == instance);
}
