// What opening does when there is a file, when there is a folder, and when there is nothing.

#include "openedFile.h"

namespace {

constexpr ACCESS_MASK kList = FILE_LIST_DIRECTORY | SYNCHRONIZE;

constexpr u64 kSuperseded = 0;
constexpr u64 kOpened = 1;
constexpr u64 kCreated = 2;
constexpr u64 kOverwritten = 3;

class FileDispositions : public testing::Test {
 protected:
  tDriveFolder drive;
};

// What was done, for a disposition that succeeds.
u64 doneBy(u32 disposition) {
  tOpenedFile const file({.name = kFileName, .disposition = disposition});
  EXPECT_EQ(file.status, STATUS_SUCCESS) << "disposition " << disposition;
  return file.result.Information;
}

}  // namespace

TEST_F(FileDispositions, ThatCreateMakeAFileWhereNoneIs) {
  for (u32 disposition : {FILE_SUPERSEDE, FILE_CREATE, FILE_OPEN_IF, FILE_OVERWRITE_IF}) {
    EXPECT_EQ(doneBy(disposition), kCreated) << "disposition " << disposition;
    EXPECT_TRUE(drive.has("one"));
    std::filesystem::remove(drive.pathOf("one"));
  }
}

TEST_F(FileDispositions, ThatDoNotCreateFindNoName) {
  for (u32 disposition : {FILE_OPEN, FILE_OVERWRITE}) {
    EXPECT_EQ(openingStatus({.name = kFileName, .disposition = disposition}),
              STATUS_OBJECT_NAME_NOT_FOUND);
  }
  EXPECT_TRUE(drive.isEmpty());
}

TEST_F(FileDispositions, ThatOpenKeepWhatIsInTheFile) {
  drive.write("one", "kept");
  EXPECT_EQ(doneBy(FILE_OPEN), kOpened);
  EXPECT_EQ(doneBy(FILE_OPEN_IF), kOpened);
  EXPECT_EQ(drive.read("one"), "kept");
}

TEST_F(FileDispositions, ThatOverwriteEmptyTheFile) {
  for (u32 disposition : {FILE_OVERWRITE, FILE_OVERWRITE_IF}) {
    drive.write("one", "dropped");
    EXPECT_EQ(doneBy(disposition), kOverwritten);
    EXPECT_EQ(drive.read("one"), "");
  }
  drive.write("one", "dropped");
  EXPECT_EQ(doneBy(FILE_SUPERSEDE), kSuperseded);
  EXPECT_EQ(drive.read("one"), "");
}

TEST_F(FileDispositions, CreateCollidesWithWhatIsThere) {
  drive.write("one", "kept");
  EXPECT_EQ(openingStatus({.name = kFileName, .disposition = FILE_CREATE}),
            STATUS_OBJECT_NAME_COLLISION);
  EXPECT_EQ(drive.read("one"), "kept");
}

TEST_F(FileDispositions, AppendingAccessMayEmptyTheFile) {
  drive.write("one", "dropped");
  tOpenedFile file({.name = kFileName,
                    .access = FILE_APPEND_DATA | SYNCHRONIZE,
                    .disposition = FILE_OVERWRITE_IF});
  EXPECT_EQ(file.write("new"), STATUS_SUCCESS);
  EXPECT_EQ(drive.read("one"), "new");
}

TEST_F(FileDispositions, FileIsNoFolderAndFolderIsNoFile) {
  drive.write("file", "");
  drive.makeFolder("folder");
  EXPECT_EQ(
      openingStatus({.name = L"\\??\\C:\\file", .access = kList, .options = FILE_DIRECTORY_FILE}),
      STATUS_NOT_A_DIRECTORY);
  EXPECT_EQ(openingStatus({.name = L"\\??\\C:\\folder"}), STATUS_FILE_IS_A_DIRECTORY);
  EXPECT_EQ(openingStatus({.name = L"\\??\\C:\\"}), STATUS_FILE_IS_A_DIRECTORY);
}

TEST_F(FileDispositions, DriveItselfIsAFolder) {
  EXPECT_EQ(openingStatus({.name = L"\\??\\C:\\",
                           .access = kList,
                           .disposition = FILE_OPEN,
                           .options = FILE_DIRECTORY_FILE}),
            STATUS_SUCCESS);
}

TEST_F(FileDispositions, FolderIsCreatedWhenAskedFor) {
  tOpenedFile const folder({.name = kFileName, .access = kList, .options = FILE_DIRECTORY_FILE});
  EXPECT_EQ(folder.result.Information, kCreated);
  EXPECT_TRUE(std::filesystem::is_directory(drive.pathOf("one")));
}

TEST_F(FileDispositions, FolderIsNotEmptied) {
  drive.makeFolder("one");
  EXPECT_EQ(openingStatus({.name = kFileName, .disposition = FILE_OVERWRITE_IF, .options = 0}),
            STATUS_OBJECT_NAME_COLLISION);
}

TEST_F(FileDispositions, RequestsThatContradictThemselvesAreInvalid) {
  for (tOpening const& opening :
       {tOpening{.name = kFileName, .disposition = FILE_OVERWRITE_IF + 1},
        tOpening{.name = kFileName, .share = 8},
        tOpening{.name = kFileName, .access = GENERIC_READ},
        tOpening{.name = kFileName, .options = FILE_DIRECTORY_FILE | FILE_NON_DIRECTORY_FILE},
        tOpening{
            .name = kFileName, .disposition = FILE_SUPERSEDE, .options = FILE_DIRECTORY_FILE}}) {
    EXPECT_EQ(openingStatus(opening), STATUS_INVALID_PARAMETER);
  }
  EXPECT_TRUE(drive.isEmpty());
}

TEST_F(FileDispositions, FailedOpenLeavesTheHandleOfTheCallerAlone) {
  tOpenedFile const file({.name = kFileName, .disposition = FILE_OPEN});
  EXPECT_EQ(file.handle, nullptr);
  EXPECT_EQ(ntoshost::outstandingHandles(), 0u);
}
