// The handle that is not valid where the text is put: the file is opened anew and the block written
// once more.

#include "fileCalls.h"

namespace {

class FileReopening : public tFileTest {
 protected:
  FileReopening() {
    configureWith(file, "C:/one.out", "overwrite");
    EXPECT_EQ(file.open(), 1u);
    file.put("before ");
    handle = callsOf(FileCallKind::Create)[1].handle;
    ntoshost::forgetFileCalls();
  }

  tFileTraceDestination file;
  HANDLE handle = nullptr;
};

// Counts the calls of its close.
class tCountingFile : public tFileTraceDestination {
 public:
  void close() override {
    ++closes;
    tFileTraceDestination::close();
  }

  int closes = 0;
};

}  // namespace

TEST_F(FileReopening, BlockIsWrittenOnceMoreAtTheEndOfTheFile) {
  ntoshost::invalidateHandle(handle);
  file.put("block");
  EXPECT_EQ(callText(), "write close close create create write ");
  EXPECT_EQ(drive.read("one.out"), "before block");
}

TEST_F(FileReopening, FileIsAppendedToEvenInTheModeOverwrite) {
  ntoshost::invalidateHandle(handle);
  file.put("block");
  std::vector<FileCall> const creates = callsOf(FileCallKind::Create);
  ASSERT_EQ(creates.size(), 2u);
  EXPECT_EQ(narrow(creates[0].name), "\\??\\C:\\");
  EXPECT_EQ(narrow(creates[1].name), "one.out");
  EXPECT_EQ(creates[1].disposition, 3u);
}

TEST_F(FileReopening, SameBytesAreWrittenToTheNewHandle) {
  ntoshost::invalidateHandle(handle);
  file.put("a\nb");
  std::vector<FileCall> const writes = callsOf(FileCallKind::Write);
  ASSERT_EQ(writes.size(), 2u);
  EXPECT_EQ(writes[0].handle, handle);
  EXPECT_EQ(writes[1].handle, callsOf(FileCallKind::Create)[1].handle);
  EXPECT_EQ(bytesOf(writes[0]), "a\r\nb");
  EXPECT_EQ(bytesOf(writes[1]), "a\r\nb");
}

TEST_F(FileReopening, OnlyTheBlockThatMetItIsRepeated) {
  ntoshost::failFileCalls(FileCallKind::Write, 2, 1, STATUS_OBJECT_TYPE_MISMATCH);
  file.put((std::string(512, 'a') + std::string(512, 'b') + "c").c_str());
  EXPECT_EQ(writtenLengths(), (std::vector<u32>{512, 512, 512, 1}));
  EXPECT_EQ(drive.read("one.out"), "before " + std::string(512, 'a') + std::string(512, 'b') + "c");
}

TEST_F(FileReopening, BlockIsRepeatedOnceOnly) {
  ntoshost::failFileCalls(FileCallKind::Write, 1, 2, STATUS_OBJECT_TYPE_MISMATCH);
  file.put("lost");
  EXPECT_EQ(callText(), "write close close create create write ");
  file.put("seen");
  EXPECT_EQ(drive.read("one.out"), "before seen");
}

TEST_F(FileReopening, FileIsOpenedByItsActiveNameAndThePendingOneStays) {
  configureWith(file, "C:/two.out", "overwrite");
  ntoshost::invalidateHandle(handle);
  file.put("block");
  EXPECT_EQ(drive.read("one.out"), "before block");
  EXPECT_FALSE(drive.has("two.out"));
  EXPECT_STREQ(file.getDescription(), "File = C:/two.out");
  drive.write("two.out", "dropped");
  EXPECT_EQ(file.open(), 1u);
  EXPECT_EQ(drive.read("two.out"), "");
}

TEST_F(FileReopening, FileThatDoesNotOpenAgainLeavesTheDestinationClosed) {
  configureWith(file, "C:/two.out", "overwrite");
  ntoshost::invalidateHandle(handle);
  ntoshost::failFileCalls(FileCallKind::Create, 2, 1, STATUS_ACCESS_DENIED);
  file.put((std::string(512, 'a') + "rest").c_str());
  EXPECT_EQ(callText(), "write close close create create close ");
  EXPECT_EQ(ntoshost::outstandingHandles(), 0u);
  ntoshost::forgetFileCalls();
  file.put("unseen");
  EXPECT_EQ(ntoshost::fileCallsSeen(), 0u);
  EXPECT_STREQ(file.getDescription(), "File = C:/two.out");
  EXPECT_EQ(settingsOf(file), " --destination file C:/one.out");
}

TEST_F(FileReopening, ClosedDestinationCanBeOpenedAgain) {
  ntoshost::invalidateHandle(handle);
  ntoshost::failFileCalls(FileCallKind::Create, 1, 2, STATUS_ACCESS_DENIED);
  file.put("lost");
  configureWith(file, "C:/one.out");
  EXPECT_EQ(file.open(), 1u);
  file.put("again");
  EXPECT_EQ(drive.read("one.out"), "before again");
}

TEST_F(FileReopening, DriveThatIsGoneLeavesTheDestinationClosed) {
  ntoshost::invalidateHandle(handle);
  ntoshost::unmountDrive('C');
  file.put("lost");
  EXPECT_EQ(ntoshost::outstandingHandles(), 0u);
}

TEST_F(FileReopening, CloseOfADerivedClassIsCalled) {
  tCountingFile counting;
  configureWith(counting, "C:/two.out");
  counting.open();
  EXPECT_EQ(counting.closes, 0);
  ntoshost::failFileCalls(FileCallKind::Write, 1, 1, STATUS_OBJECT_TYPE_MISMATCH);
  counting.put("block");
  EXPECT_EQ(counting.closes, 1);
  EXPECT_EQ(drive.read("two.out"), "block");
}

TEST_F(FileReopening, EveryOpenThatFailsInTurnLeavesNothingOpen) {
  u64 const failures = ntoshost::failEachCall(ntoshost::kFaultFileOpen, [&](u64) {
    configureWith(file, "C:/one.out");
    file.open();
    ntoshost::failFileCalls(FileCallKind::Write, 1, 1, STATUS_OBJECT_TYPE_MISMATCH);
    file.put("block");
    bool const isOpen = ntoshost::outstandingHandles() == 2;
    EXPECT_TRUE(isOpen || ntoshost::outstandingHandles() == 0);
    EXPECT_EQ(isOpen, ntoshost::faultsInjected() == 0);
    stopFailing(FileCallKind::Write);
    file.close();
  });
  EXPECT_EQ(failures, 4u);
}
