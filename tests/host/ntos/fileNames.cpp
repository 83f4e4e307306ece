// Which file of which folder a kernel path names.

#include <unistd.h>

#include <vector>

#include "openedFile.h"

namespace {

NTSTATUS statusOf(wchar_t const* name) {
  return openingStatus({.name = name});
}

// A terminated path with a name of this length.
std::vector<wchar_t> longName(size_t length) {
  constexpr wchar_t kDrive[] = L"\\??\\C:\\";
  std::vector<wchar_t> name(kDrive, kDrive + 7);
  name.insert(name.end(), length, L'n');
  name.push_back(0);
  return name;
}

}  // namespace

TEST(FileNames, DriveIsTheFolderMountedForItsLetter) {
  tDriveFolder const c('C');
  tDriveFolder const d('d');
  EXPECT_EQ(statusOf(L"\\??\\C:\\one"), STATUS_SUCCESS);
  EXPECT_EQ(statusOf(L"\\??\\D:\\two"), STATUS_SUCCESS);
  EXPECT_TRUE(c.has("one"));
  EXPECT_TRUE(d.has("two"));
}

// The kernel promises nothing about it.
TEST(FileNames, NoHandleIsLeftAsItWasByAFailure) {
  UNICODE_STRING name;
  RtlInitUnicodeString(&name, L"\\??\\C:\\one");
  OBJECT_ATTRIBUTES attributes;
  InitializeObjectAttributes(&attributes, &name, OBJ_KERNEL_HANDLE, nullptr, nullptr);
  IO_STATUS_BLOCK result;
  HANDLE handle = nullptr;
  EXPECT_EQ(ZwCreateFile(&handle, GENERIC_READ | SYNCHRONIZE, &attributes, &result, nullptr, 0,
                         kShareAll, FILE_OPEN, FILE_SYNCHRONOUS_IO_NONALERT, nullptr, 0),
            STATUS_OBJECT_PATH_NOT_FOUND);
  EXPECT_NE(handle, nullptr);
  EXPECT_EQ(ntoshost::outstandingHandles(), 0u);
}

TEST(FileNames, LetterMayBeOfEitherCase) {
  tDriveFolder const drive('C');
  EXPECT_EQ(statusOf(L"\\??\\c:\\one"), STATUS_SUCCESS);
  EXPECT_TRUE(drive.has("one"));
}

TEST(FileNames, DriveThatIsNotMountedHasNoPaths) {
  EXPECT_EQ(statusOf(L"\\??\\C:\\one"), STATUS_OBJECT_PATH_NOT_FOUND);
  EXPECT_EQ(statusOf(L"\\??\\1:\\one"), STATUS_OBJECT_PATH_NOT_FOUND);
}

TEST(FileNames, UnmountedDriveIsGone) {
  tDriveFolder const drive('C');
  ntoshost::unmountDrive('C');
  EXPECT_EQ(statusOf(L"\\??\\C:\\one"), STATUS_OBJECT_PATH_NOT_FOUND);
  EXPECT_TRUE(drive.isEmpty());
}

TEST(FileNames, SecondMountTakesThePlaceOfTheFirst) {
  tDriveFolder const first('C');
  tDriveFolder const second('C');
  EXPECT_EQ(statusOf(L"\\??\\C:\\one"), STATUS_SUCCESS);
  EXPECT_TRUE(first.isEmpty());
  EXPECT_TRUE(second.has("one"));
}

TEST(FileNames, OnlyLettersAndFoldersAreMounted) {
  tDriveFolder const drive('C');
  drive.write("file", "");
  EXPECT_FALSE(ntoshost::mountDrive('1', drive.pathOf("").c_str()));
  EXPECT_FALSE(ntoshost::mountDrive('@', drive.pathOf("").c_str()));
  EXPECT_FALSE(ntoshost::mountDrive('[', drive.pathOf("").c_str()));
  EXPECT_FALSE(ntoshost::mountDrive('\xC3', drive.pathOf("").c_str()));
  EXPECT_FALSE(ntoshost::mountDrive('C', drive.pathOf("missing").c_str()));
  EXPECT_FALSE(ntoshost::mountDrive('C', drive.pathOf("file").c_str()));
  EXPECT_EQ(statusOf(L"\\??\\C:\\one"), STATUS_SUCCESS);
}

TEST(FileNames, PathsOutsideTheDrivesAreRefused) {
  tDriveFolder const drive('C');
  EXPECT_EQ(statusOf(L""), STATUS_OBJECT_PATH_SYNTAX_BAD);
  EXPECT_EQ(statusOf(L"one"), STATUS_OBJECT_PATH_SYNTAX_BAD);
  EXPECT_EQ(statusOf(L"C:\\one"), STATUS_OBJECT_PATH_SYNTAX_BAD);
  EXPECT_EQ(statusOf(L"\\?"), STATUS_OBJECT_PATH_SYNTAX_BAD);
  EXPECT_EQ(statusOf(L"\\??\\C:"), STATUS_OBJECT_NAME_INVALID);
  EXPECT_EQ(statusOf(L"\\??\\C:one"), STATUS_OBJECT_NAME_INVALID);
  EXPECT_EQ(statusOf(L"\\??\\CC\\one"), STATUS_OBJECT_NAME_INVALID);
  EXPECT_TRUE(drive.isEmpty());
}

TEST(FileNames, EitherSeparatorLeadsIntoAFolder) {
  tDriveFolder const drive('C');
  drive.makeFolder("a/b");
  EXPECT_EQ(statusOf(L"\\??\\C:\\a\\b\\one"), STATUS_SUCCESS);
  EXPECT_EQ(statusOf(L"\\??\\C:/a/b/two"), STATUS_SUCCESS);
  EXPECT_TRUE(drive.has("a/b/one"));
  EXPECT_TRUE(drive.has("a/b/two"));
}

TEST(FileNames, MissingFolderIsAMissingPathAndIsNotMade) {
  tDriveFolder const drive('C');
  drive.write("file", "");
  EXPECT_EQ(statusOf(L"\\??\\C:\\missing\\one"), STATUS_OBJECT_PATH_NOT_FOUND);
  EXPECT_EQ(statusOf(L"\\??\\C:\\file\\one"), STATUS_OBJECT_PATH_NOT_FOUND);
  EXPECT_FALSE(drive.has("missing"));
}

TEST(FileNames, NothingLeadsOutOfTheDrive) {
  tDriveFolder const drive('C');
  drive.makeFolder("a");
  for (wchar_t const* name :
       {L"\\??\\C:\\..\\one", L"\\??\\C:\\a\\..\\one", L"\\??\\C:\\..", L"\\??\\C:\\.\\one",
        L"\\??\\C:\\\\one", L"\\??\\C:\\a\\\\one", L"\\??\\C:\\one\\"}) {
    EXPECT_EQ(statusOf(name), STATUS_OBJECT_NAME_INVALID);
  }
  EXPECT_FALSE(drive.has("one"));
}

TEST(FileNames, SymbolicLinksAreNotFollowed) {
  tDriveFolder const drive('C');
  tDriveFolder const outside('D');
  ASSERT_EQ(symlink(outside.pathOf("").c_str(), drive.pathOf("link").c_str()), 0);
  ASSERT_EQ(symlink(outside.pathOf("one").c_str(), drive.pathOf("file").c_str()), 0);
  EXPECT_EQ(statusOf(L"\\??\\C:\\link\\one"), STATUS_OBJECT_PATH_NOT_FOUND);
  EXPECT_EQ(statusOf(L"\\??\\C:\\file"), STATUS_ACCESS_DENIED);
  EXPECT_TRUE(outside.isEmpty());
}

TEST(FileNames, CharactersThatFileNamesDoNotHaveAreRefused) {
  tDriveFolder const drive('C');
  for (wchar_t character : {L'"', L'*', L':', L'<', L'>', L'?', L'|', L'\x1F', L'\x01'}) {
    wchar_t name[] = L"\\??\\C:\\a-b";
    name[8] = character;
    EXPECT_EQ(statusOf(name), STATUS_OBJECT_NAME_INVALID) << static_cast<u32>(character);
  }
  EXPECT_TRUE(drive.isEmpty());
}

TEST(FileNames, WideCharactersBecomeUtf8) {
  tDriveFolder const drive('C');
  EXPECT_EQ(statusOf(L"\\??\\C:\\\x7F\x80\x7FF\x800\xFFE4"), STATUS_SUCCESS);
  EXPECT_TRUE(drive.has("\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xA4"));
  EXPECT_EQ(statusOf(L"\\??\\C:\\\xD83D\xDE00"), STATUS_SUCCESS);
  EXPECT_TRUE(drive.has("\xF0\x9F\x98\x80"));
}

TEST(FileNames, NamesHaveAtMost255Bytes) {
  tDriveFolder const drive('C');
  EXPECT_EQ(statusOf(longName(255).data()), STATUS_SUCCESS);
  EXPECT_TRUE(drive.has(std::string(255, 'n')));
  EXPECT_EQ(statusOf(longName(256).data()), STATUS_OBJECT_NAME_INVALID);
  std::vector<wchar_t> name = longName(255);
  name[name.size() - 2] = L'\x80';  // two bytes
  EXPECT_EQ(statusOf(name.data()), STATUS_OBJECT_NAME_INVALID);
}

TEST(FileNames, CaseIsIgnoredWhenAskedFor) {
  tDriveFolder const drive('C');
  drive.makeFolder("Logs");
  drive.write("Logs/One.TXT", "kept");
  tOpening opening = {.name = L"\\??\\C:\\LOGS\\one.txt", .disposition = FILE_OPEN};
  EXPECT_EQ(openingStatus(opening), STATUS_SUCCESS);
  opening.flags = OBJ_KERNEL_HANDLE;
  EXPECT_EQ(openingStatus(opening), STATUS_OBJECT_PATH_NOT_FOUND);
  opening.name = L"\\??\\C:\\Logs\\one.txt";
  EXPECT_EQ(openingStatus(opening), STATUS_OBJECT_NAME_NOT_FOUND);
}

TEST(FileNames, ExactNameIsPreferredToOneThatDiffersInCase) {
  tDriveFolder const drive('C');
  drive.write("one", "lower");
  drive.write("ONE", "upper");
  EXPECT_EQ(tOpenedFile(L"\\??\\C:\\one").read(9), "lower");
  EXPECT_EQ(tOpenedFile(L"\\??\\C:\\ONE").read(9), "upper");
}

TEST(FileNames, NameIsRelativeToAnOpenFolder) {
  tDriveFolder const drive('C');
  drive.makeFolder("a/b");
  tOpenedFile const folder({.name = L"\\??\\C:\\a",
                            .access = FILE_LIST_DIRECTORY | SYNCHRONIZE,
                            .disposition = FILE_OPEN,
                            .options = FILE_DIRECTORY_FILE});
  ASSERT_EQ(folder.status, STATUS_SUCCESS);
  EXPECT_EQ(openingStatus({.name = L"one", .root = folder.handle}), STATUS_SUCCESS);
  EXPECT_EQ(openingStatus({.name = L"b/two", .root = folder.handle}), STATUS_SUCCESS);
  EXPECT_TRUE(drive.has("a/one"));
  EXPECT_TRUE(drive.has("a/b/two"));
}

TEST(FileNames, RelativeNameCannotLeaveItsFolder) {
  tDriveFolder const drive('C');
  drive.makeFolder("a");
  tOpenedFile const folder({.name = L"\\??\\C:\\a",
                            .access = FILE_LIST_DIRECTORY | SYNCHRONIZE,
                            .options = FILE_DIRECTORY_FILE});
  for (wchar_t const* name : {L"..\\one", L"\\one", L"/one", L"\\??\\C:\\one"}) {
    EXPECT_EQ(openingStatus({.name = name, .root = folder.handle}), STATUS_OBJECT_NAME_INVALID);
  }
  EXPECT_FALSE(drive.has("one"));
}

TEST(FileNames, RootMustBeAnOpenFolder) {
  tDriveFolder const drive('C');
  tOpenedFile file(L"\\??\\C:\\one");
  EXPECT_EQ(openingStatus({.name = L"two", .root = file.handle}), STATUS_OBJECT_PATH_NOT_FOUND);
  HANDLE const closed = file.handle;
  file.close();
  EXPECT_EQ(openingStatus({.name = L"two", .root = closed}), STATUS_INVALID_HANDLE);
}
