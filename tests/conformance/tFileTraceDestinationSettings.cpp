// The words of the file destination, and what it says about itself.

#include "conformance/harness.h"
#include "support/fileDestination.h"

namespace {

using nOXDIAG100::tFileTraceDestination;

constexpr char kDefaultSettings[] = " --destination file C:/DebugTrace.out";
constexpr u32 kRequired = sizeof(kDefaultSettings);

// inquire into a buffer full of '#'.
struct tInquiry {
  char buffer[kRequired + 4];
  unsigned int required = 0;
  char* end = nullptr;

  explicit tInquiry(unsigned int size) {
    tFileTraceDestination file;
    __builtin_memset(buffer, '#', sizeof(buffer));
    end = file.inquire(buffer, size, &required);
  }
};

// Makes `word` the active name; names this long are refused.
u32 openWith(tFileTraceDestination& file, char const* word) {
  configureFile(file, word);
  return file.open();
}

}  // namespace

TEST(FileDestinationSettings, AreTheDefaultFileAtTheStart) {
  tFileTraceDestination file;
  tFileSettings const settings(file);
  EXPECT_STREQ(settings.text, kDefaultSettings);
  EXPECT_EQ(settings.required, 38u);
}

TEST(FileDestinationSettings, AreMeasuredWithoutABuffer) {
  tFileTraceDestination file;
  unsigned int required = 0;
  EXPECT_TRUE(file.inquire(nullptr, 0, &required) == nullptr);
  EXPECT_EQ(required, 38u);
  required = 0;
  EXPECT_TRUE(file.inquire(nullptr, 40, &required) == nullptr);
  EXPECT_EQ(required, 38u);
}

TEST(FileDestinationSettings, BufferOfSizeZeroIsNotTouched) {
  tInquiry const inquiry(0);
  EXPECT_EQ(inquiry.buffer[0], '#');
  EXPECT_TRUE(inquiry.end == inquiry.buffer);
  EXPECT_EQ(inquiry.required, 38u);
}

TEST(FileDestinationSettings, AreCutAtEverySizeAndTerminated) {
  for (unsigned int size = 1; size < kRequired; ++size) {
    tInquiry const inquiry(size);
    EXPECT_EQ(__builtin_strlen(inquiry.buffer), size_t{size - 1});
    EXPECT_EQ(__builtin_memcmp(inquiry.buffer, kDefaultSettings, size - 1), 0);
    EXPECT_EQ(inquiry.buffer[size], '#');
    EXPECT_TRUE(inquiry.end == inquiry.buffer + size);
    EXPECT_EQ(inquiry.required, 38u);
  }
}

TEST(FileDestinationSettings, EndAtTheirTerminatorWhenTheyFit) {
  for (unsigned int size = kRequired; size < kRequired + 3; ++size) {
    tInquiry const inquiry(size);
    EXPECT_STREQ(inquiry.buffer, kDefaultSettings);
    EXPECT_EQ(inquiry.buffer[size - 1], '\0');
    EXPECT_EQ(inquiry.buffer[size], '#');
    EXPECT_TRUE(inquiry.end == inquiry.buffer + kRequired - 1);
    EXPECT_EQ(inquiry.required, 38u);
  }
}

TEST(FileDestinationSettings, RequiredSizeNeedNotBeAskedFor) {
  tFileTraceDestination file;
  char buffer[kRequired];
  file.inquire(buffer, sizeof(buffer), nullptr);
  EXPECT_STREQ(buffer, kDefaultSettings);
}

TEST(FileDestinationSettings, ChangeWhenTheFileIsOpened) {
  tFileTraceDestination file;
  configureFile(file, kTestName);
  EXPECT_STREQ(tFileSettings(file).text, kDefaultSettings);
  ASSERT_EQ(file.open(), u32{1});
  tFileSettings const settings(file);
  EXPECT_STREQ(settings.text, " --destination file C:/oxdiag-test.out");
  EXPECT_EQ(settings.required, 39u);
  file.close();
  EXPECT_STREQ(tFileSettings(file).text, " --destination file C:/oxdiag-test.out");
}

TEST(FileDestinationSettings, LeaveTheModeOut) {
  tFileTraceDestination file;
  configureFile(file, kTestName, "overwrite");
  file.open();
  EXPECT_STREQ(tFileSettings(file).text, " --destination file C:/oxdiag-test.out");
}

TEST(FileDestinationSettings, LastNameCounts) {
  tFileTraceDestination file;
  configureFile(file, "C:/first.out", "append", "C:/oxdiag-last.out", "overwrite");
  EXPECT_STREQ(file.getDescription(), "File = C:/oxdiag-last.out");
}

TEST(FileDestinationSettings, ModesAreComparedExactly) {
  tFileTraceDestination file;
  configureFile(file, "Overwrite");
  EXPECT_STREQ(file.getDescription(), "File = Overwrite");
  configureFile(file, "appends");
  EXPECT_STREQ(file.getDescription(), "File = appends");
  configureFile(file, "");
  EXPECT_STREQ(file.getDescription(), "File = ");
}

TEST(FileDestinationSettings, NoWordsKeepTheName) {
  tFileTraceDestination file;
  configureFile(file, kTestName);
  file.configure(0, nullptr);
  file.configure(3, nullptr);
  file.configure(-1, nullptr);
  configureFile(file, "overwrite");
  EXPECT_STREQ(file.getDescription(), "File = C:/oxdiag-test.out");
}

TEST(FileDestinationSettings, WordsBelongToTheCaller) {
  tFileTraceDestination file;
  char word[] = "C:/one.out";
  configureFile(file, word);
  word[3] = '#';
  EXPECT_STREQ(file.getDescription(), "File = C:/one.out");
}

TEST(FileDestinationSettings, DescriptionNamesTheFileOfTheNextOpen) {
  tFileTraceDestination file;
  EXPECT_STREQ(file.getDescription(), "File = C:/DebugTrace.out");
  configureFile(file, kTestName);
  EXPECT_STREQ(file.getDescription(), "File = C:/oxdiag-test.out");
  ASSERT_EQ(file.open(), u32{1});
  EXPECT_STREQ(file.getDescription(), "File = C:/oxdiag-test.out");
}

TEST(FileDestinationSettings, ShorterNameLeavesNothingOfALongerOne) {
  tFileTraceDestination file;
  configureFile(file, kLongName<300>.text);
  configureFile(file, "C:/s");
  EXPECT_STREQ(file.getDescription(), "File = C:/s");
}

TEST(FileDestinationSettings, NameOf255BytesIsKeptWhole) {
  tFileTraceDestination file;
  EXPECT_EQ(openWith(file, kLongName<255>.text), u32{0});
  tFileSettings const settings(file);
  EXPECT_STREQ(settings.text + 20, kLongName<255>.text);
  EXPECT_EQ(settings.required, 276u);
}

TEST(FileDestinationSettings, NameOf256BytesIsKeptWholeWithoutATerminator) {
  tFileTraceDestination file;
  EXPECT_EQ(openWith(file, kLongName<256>.text), u32{0});
  tFileSettings const settings(file);
  EXPECT_STREQ(settings.text + 20, kLongName<256>.text);
  EXPECT_EQ(settings.required, 277u);
}

TEST(FileDestinationSettings, NameOf257BytesLosesItsLast) {
  tFileTraceDestination file;
  EXPECT_EQ(openWith(file, kLongName<257>.text), u32{0});
  tFileSettings const settings(file);
  EXPECT_STREQ(settings.text + 20, kLongName<256>.text);
  EXPECT_EQ(settings.required, 277u);
}

TEST(FileDestinationSettings, NullWordEndsTheList) {
  tFileTraceDestination file;
  char const* const none = nullptr;
  configureFile(file, "C:/one.out", none, "C:/two.out");
  EXPECT_STREQ(file.getDescription(), "File = C:/one.out");
}

TEST(FileDestinationSettings, DescriptionOfALongNameEndsWithTheName) {
  tFileTraceDestination file;
  configureFile(file, kLongName<255>.text, "overwrite");
  EXPECT_STREQ(file.getDescription() + 7, kLongName<255>.text);
  configureFile(file, kLongName<257>.text, "overwrite");
  EXPECT_STREQ(file.getDescription() + 7, kLongName<256>.text);
}
