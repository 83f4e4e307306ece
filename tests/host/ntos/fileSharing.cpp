// Who may open a file that someone else has open.

#include "openedFile.h"

namespace {

constexpr ACCESS_MASK kRead = FILE_READ_DATA | SYNCHRONIZE;
constexpr ACCESS_MASK kWrite = FILE_WRITE_DATA | SYNCHRONIZE;
constexpr ACCESS_MASK kAppend = FILE_APPEND_DATA | SYNCHRONIZE;

class FileSharing : public testing::Test {
 protected:
  FileSharing() { drive.write("one", "kept"); }

  tDriveFolder drive;
};

tOpening with(ACCESS_MASK access, u32 share, u32 disposition = FILE_OPEN_IF) {
  return {.name = kFileName, .access = access, .disposition = disposition, .share = share};
}

}  // namespace

TEST_F(FileSharing, SecondOpenNeedsWhatTheFirstShares) {
  for (u32 shared = 0; shared < 4; ++shared) {
    tOpenedFile const first(with(SYNCHRONIZE | FILE_READ_DATA, shared | FILE_SHARE_READ));
    bool const sharesWriting = (shared & FILE_SHARE_WRITE) != 0;
    NTSTATUS const wanted = sharesWriting ? STATUS_SUCCESS : STATUS_SHARING_VIOLATION;
    EXPECT_EQ(openingStatus(with(kWrite, kShareAll)), wanted) << "shared " << shared;
    EXPECT_EQ(openingStatus(with(kAppend, kShareAll)), wanted) << "shared " << shared;
    EXPECT_EQ(openingStatus(with(kRead, kShareAll)), STATUS_SUCCESS) << "shared " << shared;
  }
}

TEST_F(FileSharing, FileThatIsNotSharedIsOpenedOnce) {
  tOpenedFile first(with(kRead, 0));
  EXPECT_EQ(openingStatus(with(kRead, kShareAll)), STATUS_SHARING_VIOLATION);
  first.close();
  EXPECT_EQ(openingStatus(with(kRead, kShareAll)), STATUS_SUCCESS);
}

TEST_F(FileSharing, SecondOpenMustShareWhatTheFirstDoes) {
  tOpenedFile const first(with(kAppend, kShareAll));
  EXPECT_EQ(openingStatus(with(kRead, FILE_SHARE_READ)), STATUS_SHARING_VIOLATION);
  EXPECT_EQ(openingStatus(with(kRead, FILE_SHARE_WRITE)), STATUS_SUCCESS);
}

TEST_F(FileSharing, OpenThatNeitherReadsNorWritesDisturbsNobody) {
  tOpenedFile const first(with(kRead, 0));
  EXPECT_EQ(openingStatus(with(SYNCHRONIZE, 0)), STATUS_SUCCESS);
}

TEST_F(FileSharing, OtherFilesAreNotMeant) {
  tOpenedFile const first(with(kRead, 0));
  EXPECT_EQ(openingStatus({.name = L"\\??\\C:\\two"}), STATUS_SUCCESS);
}

TEST_F(FileSharing, OneFileUnderTwoNamesIsOneFile) {
  std::filesystem::create_hard_link(drive.pathOf("one"), drive.pathOf("two"));
  tOpenedFile const first(with(kRead, 0));
  EXPECT_EQ(openingStatus({.name = L"\\??\\C:\\two"}), STATUS_SHARING_VIOLATION);
}

TEST_F(FileSharing, FileInUseIsNotEmptied) {
  tOpenedFile first(with(kRead, kShareAll));
  for (u32 disposition : {FILE_SUPERSEDE, FILE_OVERWRITE, FILE_OVERWRITE_IF}) {
    EXPECT_EQ(openingStatus(with(kAppend, kShareAll, disposition)), STATUS_SHARING_VIOLATION);
  }
  EXPECT_EQ(drive.read("one"), "kept");
  first.close();
  EXPECT_EQ(openingStatus(with(kAppend, kShareAll, FILE_OVERWRITE_IF)), STATUS_SUCCESS);
  EXPECT_EQ(drive.read("one"), "");
}
