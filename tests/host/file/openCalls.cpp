// What the file destination asks the kernel for when it opens and closes.

#include "fileCalls.h"
#include "trace/tLastBytes.h"

namespace {

class FileOpenCalls : public tFileTest {
 protected:
  // The calls of opening a file with these words.
  template <class... Words>
  std::vector<FileCall> open(Words... words) {
    configureWith(file, words...);
    opened = file.open();
    return callsOf(FileCallKind::Create);
  }

  tFileTraceDestination file;
  u32 opened = 0;
};

void expectDirectoryCall(FileCall const& call, std::string const& name) {
  EXPECT_EQ(call.access, 0x100001u);
  EXPECT_EQ(narrow(call.name), name);
  EXPECT_EQ(call.root, nullptr);
  EXPECT_EQ(call.attributes, 0x240u);
  EXPECT_FALSE(call.hasAllocationSize);
  EXPECT_EQ(call.fileAttributes, 0u);
  EXPECT_EQ(call.shareAccess, 3u);
  EXPECT_EQ(call.disposition, 1u);
  EXPECT_EQ(call.options, 0x4021u);
}

void expectFileCall(FileCall const& call, HANDLE root, std::string const& name, u32 disposition) {
  EXPECT_EQ(call.access, 0x100004u);
  EXPECT_EQ(narrow(call.name), name);
  EXPECT_EQ(call.root, root);
  EXPECT_EQ(call.attributes, 0x240u);
  EXPECT_FALSE(call.hasAllocationSize);
  EXPECT_EQ(call.fileAttributes, 0x80u);
  EXPECT_EQ(call.shareAccess, 3u);
  EXPECT_EQ(call.disposition, disposition);
  EXPECT_EQ(call.options, 0x62u);
}

}  // namespace

TEST_F(FileOpenCalls, DriveIsOpenedFirstAndTheFileRelativeToIt) {
  std::vector<FileCall> const calls = open("C:/one.out");
  ASSERT_EQ(calls.size(), 2u);
  expectDirectoryCall(calls[0], "\\??\\C:\\");
  expectFileCall(calls[1], calls[0].handle, "one.out", 3);
  EXPECT_EQ(opened, 1u);
  EXPECT_EQ(ntoshost::outstandingHandles(), 2u);
}

TEST_F(FileOpenCalls, OverwritingAsksForAnEmptyFile) {
  std::vector<FileCall> const calls = open("C:/one.out", "overwrite");
  ASSERT_EQ(calls.size(), 2u);
  expectDirectoryCall(calls[0], "\\??\\C:\\");
  expectFileCall(calls[1], calls[0].handle, "one.out", 5);
}

TEST_F(FileOpenCalls, PathIsPassedOnUnchanged) {
  tDriveFolder const other('D');
  other.makeFolder("logs");
  std::vector<FileCall> const calls = open("D:/logs/a.txt");
  ASSERT_EQ(calls.size(), 2u);
  expectDirectoryCall(calls[0], "\\??\\D:\\");
  expectFileCall(calls[1], calls[0].handle, "logs/a.txt", 3);
  EXPECT_EQ(opened, 1u);
  EXPECT_TRUE(other.has("logs/a.txt"));
  EXPECT_TRUE(drive.isEmpty());
}

TEST_F(FileOpenCalls, DriveLetterKeepsItsCase) {
  std::vector<FileCall> const calls = open("c:\\ONE.out");
  ASSERT_EQ(calls.size(), 2u);
  expectDirectoryCall(calls[0], "\\??\\c:\\");
  expectFileCall(calls[1], calls[0].handle, "ONE.out", 3);
}

TEST_F(FileOpenCalls, NoDriveHasAnotherNameThanALetter) {
  for (int byte = 1; byte < 256; ++byte) {
    char const name[] = {static_cast<char>(byte), ':', '/', 'x', '\0'};
    bool const isLetter = (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z');
    ntoshost::forgetFileCalls();
    EXPECT_EQ(open(std::string(name)).size(), isLetter ? 2u : 0u) << byte;
    EXPECT_EQ(opened, byte == 'C' || byte == 'c' ? 1u : 0u) << byte;
    file.close();
  }
}

TEST_F(FileOpenCalls, ANameIsReadUpToItsTerminator) {
  tLastBytes const name("C:/one.out", sizeof("C:/one.out"));
  char* words[] = {name.bytes};
  file.configure(1, words);
  EXPECT_EQ(file.open(), 1u);
  EXPECT_TRUE(drive.has("one.out"));
}

TEST_F(FileOpenCalls, ANameWithoutRoomChangesNothingElse) {
  drive.write("DebugTrace.out", "before ");
  open("C:/" + std::string(400, 'n'));
  EXPECT_EQ(opened, 0u);
  EXPECT_EQ(file.open(), 1u);
  file.put("behind");
  EXPECT_EQ(drive.read("DebugTrace.out"), "before behind");
}

TEST_F(FileOpenCalls, BytesFrom0x80OnAreWidenedWithTheirSign) {
  std::vector<FileCall> const calls = open("C:/\x7F\x80\xE4\xFF.out");
  ASSERT_EQ(calls.size(), 2u);
  EXPECT_EQ(calls[1].name[0], 0x7F);
  EXPECT_EQ(calls[1].name[1], 0xFF80);
  EXPECT_EQ(calls[1].name[2], 0xFFE4);
  EXPECT_EQ(calls[1].name[3], 0xFFFF);
  EXPECT_EQ(narrow(calls[1].name + 4), ".out");
  EXPECT_EQ(opened, 1u);
}

TEST_F(FileOpenCalls, LongestNameIsPassedOnWhole) {
  std::string const path(124, 'n');
  std::vector<FileCall> const calls = open("C:/" + path);
  ASSERT_EQ(calls.size(), 2u);
  EXPECT_EQ(narrow(calls[1].name), path);
}

TEST_F(FileOpenCalls, RefusedNamesAskForNothing) {
  for (std::string const& name : {std::string("x"), std::string("C:x"), std::string("1:/x"),
                                  std::string("C:/") + "/x", std::string("Q:/\\??\\C:\\x"),
                                  "C:/" + std::string(125, 'n'), "C:/" + std::string(300, 'n')}) {
    EXPECT_EQ(open(name).size(), 0u) << name;
    EXPECT_EQ(opened, 0u) << name;
  }
  EXPECT_TRUE(drive.isEmpty());
}

TEST_F(FileOpenCalls, FileThatSomeoneElseHasOpenIsAppendedTo) {
  drive.write("one.out", "kept ");
  tFileTraceDestination other;
  configureWith(other, "C:/one.out");
  ASSERT_EQ(other.open(), 1u);
  ntoshost::forgetFileCalls();
  std::vector<FileCall> const calls = open("C:/one.out", "overwrite");
  ASSERT_EQ(calls.size(), 3u);
  expectFileCall(calls[1], calls[0].handle, "one.out", 5);
  EXPECT_EQ(calls[1].status, ntosStatus(0xC0000043));
  expectFileCall(calls[2], calls[0].handle, "one.out", 3);
  EXPECT_EQ(opened, 1u);
  file.put("added");
  EXPECT_EQ(drive.read("one.out"), "kept added");
}

TEST_F(FileOpenCalls, FileThatSomeoneElseHoldsAloneDoesNotOpen) {
  ntoshost::failFileCalls(FileCallKind::Create, 2, 2, STATUS_SHARING_VIOLATION);
  std::vector<FileCall> const calls = open("C:/one.out", "overwrite");
  EXPECT_EQ(calls.size(), 3u);
  EXPECT_EQ(opened, 0u);
  EXPECT_EQ(ntoshost::outstandingHandles(), 0u);
}

TEST_F(FileOpenCalls, OnlyASharingViolationLeadsToASecondTry) {
  for (NTSTATUS status : {STATUS_ACCESS_DENIED, STATUS_OBJECT_TYPE_MISMATCH, STATUS_DISK_FULL,
                          STATUS_INSUFFICIENT_RESOURCES, ntosStatus(0xC0000042)}) {
    ntoshost::forgetFileCalls();
    ntoshost::failFileCalls(FileCallKind::Create, 2, 1, status);
    EXPECT_EQ(open("C:/one.out", "overwrite").size(), 2u);
    EXPECT_EQ(opened, 0u);
    EXPECT_EQ(ntoshost::outstandingHandles(), 0u);
  }
}

TEST_F(FileOpenCalls, AppendingTriesOnce) {
  ntoshost::failFileCalls(FileCallKind::Create, 2, 1, STATUS_SHARING_VIOLATION);
  EXPECT_EQ(open("C:/one.out").size(), 2u);
  EXPECT_EQ(opened, 0u);
}

TEST_F(FileOpenCalls, DriveThatIsNotThereShowsInTheNextStep) {
  std::vector<FileCall> const calls = open("Q:/one.out");
  ASSERT_EQ(calls.size(), 2u);
  expectFileCall(calls[1], nullptr, "one.out", 3);
  EXPECT_EQ(opened, 0u);
}

TEST_F(FileOpenCalls, ClosingClosesTheFileAndThenItsDrive) {
  std::vector<FileCall> const creates = open("C:/one.out");
  file.close();
  file.close();
  std::vector<FileCall> const closes = callsOf(FileCallKind::Close);
  ASSERT_EQ(closes.size(), 2u);
  EXPECT_EQ(closes[0].handle, creates[1].handle);
  EXPECT_EQ(closes[1].handle, creates[0].handle);
}

TEST_F(FileOpenCalls, DestructionClosesTheFileAndThenItsDrive) {
  {
    tFileTraceDestination shortLived;
    configureWith(shortLived, "C:/one.out");
    shortLived.open();
  }
  std::vector<FileCall> const creates = callsOf(FileCallKind::Create);
  std::vector<FileCall> const closes = callsOf(FileCallKind::Close);
  ASSERT_EQ(closes.size(), 2u);
  EXPECT_EQ(closes[0].handle, creates[1].handle);
  EXPECT_EQ(closes[1].handle, creates[0].handle);
}

TEST_F(FileOpenCalls, FailedOpenClosesTheDriveAgain) {
  open("C:/missing/one.out");
  EXPECT_EQ(opened, 0u);
  EXPECT_EQ(callText(), "create create close ");
}

TEST_F(FileOpenCalls, OpeningAnOpenFileClosesItFirst) {
  open("C:/one.out");
  ntoshost::forgetFileCalls();
  EXPECT_EQ(file.open(), 1u);
  EXPECT_EQ(callText(), "close close create create ");
}

TEST_F(FileOpenCalls, EveryCallThatFailsInTurnIsAFailedOpenWithoutALeftover) {
  for (char const* mode : {"append", "overwrite"}) {
    u64 const failures = ntoshost::failEachCall(ntoshost::kFaultFile, [&](u64) {
      configureWith(file, "C:/one.out", mode);
      bool const opens = file.open() != 0;
      EXPECT_EQ(opens, ntoshost::faultsInjected() == 0);
      EXPECT_EQ(ntoshost::outstandingHandles(), opens ? 2u : 0u);
      EXPECT_STREQ(file.getDescription(), opens ? "File = C:/one.out" : "File = C:/DebugTrace.out");
      EXPECT_EQ(settingsOf(file), " --destination file C:/one.out");
      file.close();
    });
    EXPECT_EQ(failures, 2u) << mode;
  }
}

TEST_F(FileOpenCalls, OpeningWritingAndClosingAllocateNothing) {
  ntoshost::watchCalls(ntoshost::kFaultMemory);
  open("C:/one.out");
  file.put("text\n");
  file.getDescription();
  settingsOf(file);
  file.close();
  EXPECT_EQ(ntoshost::fallibleCallsSeen(), 0u);
}
