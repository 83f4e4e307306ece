// Which names the file destination opens, and what a failed open leaves.

#include "conformance/harness.h"
#include "support/fileDestination.h"

namespace {

using nOXDIAG100::tFileTraceDestination;

constexpr char kMissing[] = "C:\\oxdiag-missing\\test.out";

u32 openResult(char const* name) {
  tFileTraceDestination file;
  configureFile(file, name);
  return file.open();
}

// Opens the file of that name, for a short text.
u32 putInto(char const* name, char const* text) {
  tFileTraceDestination file;
  configureFile(file, name, "overwrite");
  u32 const opened = file.open();
  file.put(text);
  return opened;
}

bool holds(wchar_t const* path, char const* text) {
  tDriveFile file(path);
  return file.read() && __builtin_strcmp(file.getText(), text) == 0;
}

// The kernel path of a file on C: whose name has this many letters.
template <u32 length>
struct tLongPath {
  static constexpr u32 kDrive = 7;
  wchar_t text[kDrive + length + 1];

  tLongPath() {
    __builtin_memcpy(text, L"\\??\\C:\\", kDrive * sizeof(wchar_t));
    for (u32 index = 0; index < length; ++index) text[kDrive + index] = 'n';
    text[kDrive + length] = 0;
  }
};

}  // namespace

TEST(FileDestinationNames, EitherSeparatorFollowsTheColon) {
  EXPECT_EQ(putInto("C:/oxdiag-test.out", "slash"), u32{1});
  EXPECT_TRUE(holds(kTestPath, "slash"));
  EXPECT_EQ(putInto("C:\\oxdiag-test.out", "backslash"), u32{1});
  EXPECT_TRUE(holds(kTestPath, "backslash"));
}

TEST(FileDestinationNames, LettersOfEitherCaseNameDriveAndFile) {
  EXPECT_EQ(putInto("c:/OXDIAG-TEST.OUT", "other case"), u32{1});
  EXPECT_TRUE(holds(kTestPath, "other case"));
}

TEST(FileDestinationNames, DefaultFileIsOnTheFirstDrive) {
  tFileTraceDestination file;
  file.configure(0, nullptr);
  file.configure(1, nullptr);
  ASSERT_EQ(file.open(), u32{1});
  EXPECT_EQ(tDriveFile(L"\\??\\C:\\DebugTrace.out").openAlone(), STATUS_SHARING_VIOLATION);
}

TEST(FileDestinationNames, WithoutDriveLetterColonAndSeparatorAreRefused) {
  constexpr char const* kNames[] = {"",     "C",       "C:",          "C:x",          "C:.",
                                    "CC/x", "C;/x",    "x.out",       "/x.out",       "\\x",
                                    "1:/x", "@:/x",    "[:/x",        "`:/x",         "{:/x",
                                    ":/x",  "\xC3:/x", "\\??\\C:\\x", "--destination"};
  for (char const* name : kNames) {
    EXPECT_EQ(openResult(name), u32{0});
  }
}

TEST(FileDestinationNames, SecondSeparatorIsRefused) {
  constexpr char const* kNames[] = {"C://x", "C:\\\\x", "C:/\\x", "Q:/\\??\\C:\\oxdiag-test.out"};
  for (char const* name : kNames) {
    EXPECT_EQ(openResult(name), u32{0});
  }
}

TEST(FileDestinationNames, FolderIsNoFile) {
  EXPECT_EQ(openResult("C:/"), u32{0});
  EXPECT_EQ(openResult("C:\\"), u32{0});
}

TEST(FileDestinationNames, DriveThatIsNotThereDoesNotOpen) {
  EXPECT_EQ(openResult("Q:/oxdiag-test.out"), u32{0});
  EXPECT_EQ(openResult("Q:/"), u32{0});
}

TEST(FileDestinationNames, FolderThatIsNotThereDoesNotOpen) {
  EXPECT_EQ(openResult(kMissing), u32{0});
}

TEST(FileDestinationNames, NameOf127BytesIsOpened) {
  tLongPath<124> const path;
  EXPECT_EQ(putInto(kLongName<127>.text, "long"), u32{1});
  EXPECT_TRUE(holds(path.text, "long"));
}

TEST(FileDestinationNames, NamesOf128BytesAndMoreAreRefused) {
  EXPECT_EQ(openResult(kLongName<128>.text), u32{0});
  EXPECT_EQ(openResult(kLongName<129>.text), u32{0});
  EXPECT_EQ(openResult(kLongName<256>.text), u32{0});
  EXPECT_EQ(openResult(kLongName<300>.text), u32{0});
}

TEST(FileDestinationNames, FailedOpenGoesBackToTheDefaultName) {
  constexpr char const* kNames[] = {kMissing, "nowhere", ""};
  for (char const* name : kNames) {
    tFileTraceDestination file;
    configureFile(file, name, "overwrite");
    ASSERT_EQ(file.open(), u32{0});
    EXPECT_STREQ(file.getDescription(), "File = C:/DebugTrace.out");
  }
}

TEST(FileDestinationNames, FailedOpenLeavesItsNameInTheSettings) {
  tFileTraceDestination file;
  configureFile(file, kMissing);
  file.open();
  EXPECT_STREQ(tFileSettings(file).text, " --destination file C:\\oxdiag-missing\\test.out");
}

TEST(FileDestinationNames, NextOpenAfterAFailedOneIsOfTheDefaultFile) {
  tFileTraceDestination file;
  configureFile(file, kMissing);
  EXPECT_EQ(file.open(), u32{0});
  EXPECT_EQ(file.open(), u32{1});
  EXPECT_STREQ(tFileSettings(file).text, " --destination file C:/DebugTrace.out");
}

TEST(FileDestinationNames, NothingIsWrittenAfterAFailedOpen) {
  tDriveFile file(kTestPath);
  ASSERT_TRUE(file.write("kept"));
  tFileTraceDestination destination;
  configureFile(destination, kTestName);
  ASSERT_EQ(destination.open(), u32{1});
  configureFile(destination, kMissing);
  EXPECT_EQ(destination.open(), u32{0});
  destination.put("unseen");
  ASSERT_TRUE(file.read());
  EXPECT_STREQ(file.getText(), "kept");
  EXPECT_EQ(file.openAlone(), STATUS_SUCCESS);
}
