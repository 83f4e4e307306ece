// Reading, writing and asking.

#include "ntoshost/files.h"
#include "openedFile.h"

namespace {

constexpr i64 kEnd = -1;
constexpr i64 kPosition = -2;

class FileTransfers : public testing::Test {
 protected:
  tDriveFolder drive;
};

tOpening with(ACCESS_MASK access) {
  return {.name = kFileName, .access = access | SYNCHRONIZE};
}

}  // namespace

TEST_F(FileTransfers, WritesFollowEachOther) {
  tOpenedFile file(with(FILE_WRITE_DATA));
  EXPECT_EQ(file.write("one "), STATUS_SUCCESS);
  EXPECT_EQ(file.result.Information, 4u);
  EXPECT_EQ(file.write("two"), STATUS_SUCCESS);
  EXPECT_EQ(drive.read("one"), "one two");
}

TEST_F(FileTransfers, WritingBeginsAtTheFrontOfAFile) {
  drive.write("one", "abcdef");
  tOpenedFile file(with(FILE_WRITE_DATA));
  file.write("XY");
  EXPECT_EQ(drive.read("one"), "XYcdef");
}

TEST_F(FileTransfers, AppendingAccessWritesAtTheEndWhateverTheOffset) {
  drive.write("one", "abc");
  tOpenedFile file(with(FILE_APPEND_DATA));
  i64 const front = 0;
  EXPECT_EQ(file.write("1"), STATUS_SUCCESS);
  EXPECT_EQ(file.write("2", &front), STATUS_SUCCESS);
  EXPECT_EQ(drive.read("one"), "abc12");
}

TEST_F(FileTransfers, AppendingFollowsWhatOthersWrite) {
  tOpenedFile file(with(FILE_APPEND_DATA));
  file.write("mine ");
  tOpenedFile other(with(FILE_APPEND_DATA));
  other.write("yours ");
  file.write("mine");
  EXPECT_EQ(drive.read("one"), "mine yours mine");
}

TEST_F(FileTransfers, OffsetSaysWhereToWrite) {
  drive.write("one", "abcdef");
  tOpenedFile file(with(FILE_WRITE_DATA));
  i64 const place = 2;
  file.write("X", &place);
  file.write("Y", &kPosition);
  file.write("Z", &kEnd);
  EXPECT_EQ(drive.read("one"), "abXYefZ");
}

TEST_F(FileTransfers, OtherNegativeOffsetsAreInvalid) {
  tOpenedFile file(with(FILE_WRITE_DATA));
  i64 const place = -3;
  EXPECT_EQ(file.write("X", &place), STATUS_INVALID_PARAMETER);
}

TEST_F(FileTransfers, WritingNothingSucceeds) {
  tOpenedFile file(with(FILE_APPEND_DATA));
  EXPECT_EQ(file.write(""), STATUS_SUCCESS);
  EXPECT_EQ(file.result.Information, 0u);
  EXPECT_EQ(drive.read("one"), "");
}

TEST_F(FileTransfers, ReadingGoesOnUntilTheEnd) {
  drive.write("one", "abcdef");
  tOpenedFile file(with(FILE_READ_DATA));
  EXPECT_EQ(file.read(4), "abcd");
  EXPECT_EQ(file.read(4), "ef");
  EXPECT_EQ(file.read(4), "");
  EXPECT_EQ(file.status, STATUS_END_OF_FILE);
  EXPECT_EQ(file.read(0), "");
  EXPECT_EQ(file.status, STATUS_SUCCESS);
}

TEST_F(FileTransfers, OffsetSaysWhereToRead) {
  drive.write("one", "abcdef");
  tOpenedFile file(with(FILE_READ_DATA));
  i64 const place = 4;
  EXPECT_EQ(file.read(1, &place), "e");
  EXPECT_EQ(file.read(9), "f");
}

TEST_F(FileTransfers, AccessThatWasNotAskedForIsDenied) {
  drive.write("one", "kept");
  tOpenedFile reader(with(FILE_READ_DATA));
  tOpenedFile writer(with(FILE_WRITE_DATA));
  tOpenedFile watcher(with(0));
  EXPECT_EQ(reader.write("x"), STATUS_ACCESS_DENIED);
  EXPECT_EQ(watcher.write("x"), STATUS_ACCESS_DENIED);
  EXPECT_EQ(writer.read(1), "");
  EXPECT_EQ(writer.status, STATUS_ACCESS_DENIED);
  EXPECT_EQ(drive.read("one"), "kept");
}

TEST_F(FileTransfers, GenericRightsReadAndWrite) {
  tOpenedFile writer(with(GENERIC_WRITE));
  EXPECT_EQ(writer.write("abc"), STATUS_SUCCESS);
  EXPECT_EQ(tOpenedFile(with(GENERIC_READ)).read(9), "abc");
}

TEST_F(FileTransfers, FolderIsNeitherReadNorWritten) {
  tOpenedFile folder({.name = L"\\??\\C:\\", .disposition = FILE_OPEN, .options = 0});
  ASSERT_EQ(folder.status, STATUS_SUCCESS);
  EXPECT_EQ(folder.write("x"), STATUS_INVALID_PARAMETER);
  EXPECT_EQ(folder.read(1), "");
  EXPECT_EQ(folder.status, STATUS_INVALID_PARAMETER);
}

TEST_F(FileTransfers, FullDriveTakesNoPartOfAWrite) {
  tOpenedFile file(with(FILE_APPEND_DATA));
  ntoshost::limitDrive('C', 5);
  EXPECT_EQ(file.write("abcd"), STATUS_SUCCESS);
  EXPECT_EQ(file.write("ef"), STATUS_DISK_FULL);
  EXPECT_EQ(file.write("e"), STATUS_SUCCESS);
  EXPECT_EQ(file.write("f"), STATUS_DISK_FULL);
  EXPECT_EQ(file.write(""), STATUS_SUCCESS);
  EXPECT_EQ(drive.read("one"), "abcde");
}

TEST_F(FileTransfers, LimitIsForOneDriveAndEndsWithANewMount) {
  tDriveFolder const other('D');
  ntoshost::limitDrive('C', 0);
  tOpenedFile elsewhere({.name = L"\\??\\D:\\one"});
  EXPECT_EQ(elsewhere.write("x"), STATUS_SUCCESS);
  tDriveFolder const next('C');
  tOpenedFile file(kFileName);
  EXPECT_EQ(file.write("x"), STATUS_SUCCESS);
}

TEST_F(FileTransfers, FileTellsItsSizeAndThatItIsNoFolder) {
  drive.write("one", "abc");
  tOpenedFile file(with(FILE_READ_DATA));
  FILE_STANDARD_INFORMATION information;
  EXPECT_EQ(ZwQueryInformationFile(file.handle, &file.result, &information, sizeof(information),
                                   FileStandardInformation),
            STATUS_SUCCESS);
  EXPECT_EQ(information.EndOfFile.QuadPart, 3);
  EXPECT_GE(information.AllocationSize.QuadPart, 0);
  EXPECT_EQ(information.NumberOfLinks, 1u);
  EXPECT_EQ(information.Directory, 0);
  EXPECT_EQ(information.DeletePending, 0);
  EXPECT_EQ(file.result.Information, sizeof(information));
}

TEST_F(FileTransfers, QuestionsThatAreNotAnsweredAreRefused) {
  tOpenedFile file(kFileName);
  FILE_STANDARD_INFORMATION information;
  auto const ask = [&](u32 length, i32 kind) {
    return ZwQueryInformationFile(file.handle, &file.result, &information, length,
                                  static_cast<FILE_INFORMATION_CLASS>(kind));
  };
  EXPECT_EQ(ask(sizeof(information) - 1, FileStandardInformation), STATUS_INFO_LENGTH_MISMATCH);
  EXPECT_EQ(ask(sizeof(information), 4), STATUS_INVALID_INFO_CLASS);
}

TEST_F(FileTransfers, ClosedHandleIsInvalid) {
  tOpenedFile file(kFileName);
  HANDLE const closed = file.handle;
  file.close();
  FILE_STANDARD_INFORMATION information;
  char byte = 0;
  EXPECT_EQ(ZwQueryInformationFile(closed, &file.result, &information, sizeof(information),
                                   FileStandardInformation),
            STATUS_INVALID_HANDLE);
  EXPECT_EQ(
      ZwWriteFile(closed, nullptr, nullptr, nullptr, &file.result, &byte, 1, nullptr, nullptr),
      STATUS_INVALID_HANDLE);
  EXPECT_EQ(ZwReadFile(closed, nullptr, nullptr, nullptr, &file.result, &byte, 1, nullptr, nullptr),
            STATUS_INVALID_HANDLE);
}
