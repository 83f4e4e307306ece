// How tests look at files and make their calls fail.

#include "narrowText.h"
#include "ntoshost/executive.h"
#include "openedFile.h"

namespace {

using ntoshost::FileCallKind;

class FileControls : public testing::Test {
 protected:
  FileControls() { ntoshost::forgetFileCalls(); }
  ~FileControls() override {
    ntoshost::clearFaults();
    for (u32 kind = 0; kind < ntoshost::kFileCallKinds; ++kind) {
      ntoshost::failFileCalls(static_cast<FileCallKind>(kind), 1, 0, STATUS_SUCCESS);
    }
  }

  tDriveFolder drive;
};

NTSTATUS sizeStatus(tOpenedFile& file) {
  FILE_STANDARD_INFORMATION information;
  return ZwQueryInformationFile(file.handle, &file.result, &information, sizeof(information),
                                FileStandardInformation);
}

}  // namespace

TEST_F(FileControls, CallsAreKeptWithTheirArguments) {
  {
    tOpenedFile file({.name = kFileName, .access = GENERIC_WRITE | SYNCHRONIZE, .share = 1});
    i64 const place = 3;
    file.write("abc", &place);
    sizeStatus(file);
    file.read(7);
  }
  ASSERT_EQ(ntoshost::fileCallsSeen(), 5u);
  ntoshost::FileCall const create = ntoshost::fileCall(0);
  EXPECT_EQ(create.kind, FileCallKind::Create);
  EXPECT_EQ(create.status, STATUS_SUCCESS);
  EXPECT_EQ(narrow(create.name), narrow(kFileName));
  EXPECT_EQ(create.root, nullptr);
  EXPECT_EQ(create.attributes, OBJ_CASE_INSENSITIVE | OBJ_KERNEL_HANDLE);
  EXPECT_EQ(create.access, GENERIC_WRITE | SYNCHRONIZE);
  EXPECT_FALSE(create.hasAllocationSize);
  EXPECT_EQ(create.fileAttributes, FILE_ATTRIBUTE_NORMAL);
  EXPECT_EQ(create.shareAccess, 1u);
  EXPECT_EQ(create.disposition, FILE_OPEN_IF);
  EXPECT_EQ(create.options, FILE_NON_DIRECTORY_FILE | FILE_SYNCHRONOUS_IO_NONALERT);
  ntoshost::FileCall const write = ntoshost::fileCall(1);
  EXPECT_EQ(write.kind, FileCallKind::Write);
  EXPECT_EQ(write.handle, create.handle);
  EXPECT_TRUE(write.hasOffset);
  EXPECT_EQ(std::string(reinterpret_cast<char const*>(write.bytes), write.length), "abc");
  EXPECT_EQ(ntoshost::fileCall(2).kind, FileCallKind::Query);
  EXPECT_EQ(ntoshost::fileCall(3).kind, FileCallKind::Read);
  EXPECT_EQ(ntoshost::fileCall(3).status, STATUS_ACCESS_DENIED);
  EXPECT_EQ(ntoshost::fileCall(3).length, 7u);
  EXPECT_FALSE(ntoshost::fileCall(3).hasOffset);
  EXPECT_EQ(ntoshost::fileCall(4).kind, FileCallKind::Close);
  EXPECT_EQ(ntoshost::fileCall(4).handle, create.handle);
}

TEST_F(FileControls, LongTextsAreKeptUpToTheLimit) {
  tOpenedFile file(kFileName);
  file.write(std::string(ntoshost::FileCall::kBytesCapacity + 1, 'x'));
  ntoshost::FileCall const write = ntoshost::fileCall(1);
  EXPECT_EQ(write.length, ntoshost::FileCall::kBytesCapacity + 1);
  EXPECT_EQ(write.bytes[ntoshost::FileCall::kBytesCapacity - 1], 'x');
}

TEST_F(FileControls, LastSixtyFourCallsAreKept) {
  tOpenedFile file(kFileName);
  for (int count = 0; count < 64; ++count) file.write("x");
  EXPECT_EQ(ntoshost::fileCallsSeen(), 65u);
  EXPECT_EQ(ntoshost::fileCall(1).kind, FileCallKind::Write);
  EXPECT_DEATH(ntoshost::fileCall(0), "ntos: fileCall: call number 0 is not kept\\.");
  EXPECT_DEATH(ntoshost::fileCall(65), "call number 65 is not kept\\.");
}

TEST_F(FileControls, EachKindOfCallFailsByCount) {
  tOpenedFile file(kFileName);
  ntoshost::failNth(ntoshost::kFaultFileOpen, 2);
  EXPECT_EQ(openingStatus({.name = kFileName}), STATUS_SUCCESS);
  EXPECT_EQ(openingStatus({.name = kFileName}), STATUS_INSUFFICIENT_RESOURCES);
  ntoshost::failNth(ntoshost::kFaultFileWrite, 1);
  EXPECT_EQ(file.write("x"), STATUS_INSUFFICIENT_RESOURCES);
  EXPECT_EQ(file.write("y"), STATUS_SUCCESS);
  ntoshost::failFrom(ntoshost::kFaultFileRead, 1);
  file.read(1);
  EXPECT_EQ(file.status, STATUS_INSUFFICIENT_RESOURCES);
  EXPECT_EQ(sizeStatus(file), STATUS_INSUFFICIENT_RESOURCES);
  ntoshost::failFrom(ntoshost::kFaultFile, 1);
  EXPECT_EQ(file.write("x"), STATUS_INSUFFICIENT_RESOURCES);
  EXPECT_EQ(openingStatus({.name = kFileName}), STATUS_INSUFFICIENT_RESOURCES);
  ntoshost::clearFaults();
  EXPECT_EQ(drive.read("one"), "y");
}

TEST_F(FileControls, CallsFailWithAChosenStatus) {
  tOpenedFile file(kFileName);
  ntoshost::failFileCalls(FileCallKind::Write, 2, 2, STATUS_DISK_FULL);
  EXPECT_EQ(file.write("1"), STATUS_SUCCESS);
  EXPECT_EQ(file.write("2"), STATUS_DISK_FULL);
  EXPECT_EQ(file.write("3"), STATUS_DISK_FULL);
  EXPECT_EQ(file.write("4"), STATUS_SUCCESS);
  EXPECT_EQ(drive.read("one"), "14");
}

TEST_F(FileControls, CallMadeToFailDoesNothing) {
  ntoshost::failFileCalls(FileCallKind::Create, 1, 1, STATUS_SHARING_VIOLATION);
  EXPECT_EQ(openingStatus({.name = kFileName}), STATUS_SHARING_VIOLATION);
  EXPECT_TRUE(drive.isEmpty());
}

TEST_F(FileControls, InvalidatedHandleIsOfTheWrongTypeUntilItIsClosed) {
  tOpenedFile file(kFileName);
  ntoshost::invalidateHandle(file.handle);
  EXPECT_EQ(file.write("x"), STATUS_OBJECT_TYPE_MISMATCH);
  file.read(1);
  EXPECT_EQ(file.status, STATUS_OBJECT_TYPE_MISMATCH);
  EXPECT_EQ(sizeStatus(file), STATUS_OBJECT_TYPE_MISMATCH);
  EXPECT_EQ(ZwClose(file.handle), STATUS_SUCCESS);
  file.handle = nullptr;
}

TEST_F(FileControls, InvalidatedFolderIsNoRoot) {
  tOpenedFile folder({.name = L"\\??\\C:\\", .disposition = FILE_OPEN, .options = 0});
  ntoshost::invalidateHandle(folder.handle);
  EXPECT_EQ(openingStatus({.name = L"one", .root = folder.handle}), STATUS_OBJECT_TYPE_MISMATCH);
}

TEST_F(FileControls, OpenHandlesAreCountedAndReported) {
  EXPECT_EQ(ntoshost::outstandingHandles(), 0u);
  tOpenedFile file({.name = kFileName, .access = FILE_APPEND_DATA | SYNCHRONIZE});
  tOpenedFile folder({.name = L"\\??\\C:\\",
                      .access = FILE_LIST_DIRECTORY | SYNCHRONIZE,
                      .options = FILE_DIRECTORY_FILE});
  EXPECT_EQ(ntoshost::outstandingHandles(), 2u);
  testing::internal::CaptureStderr();
  ntoshost::reportHandles();
  std::string const report = testing::internal::GetCapturedStderr();
  size_t const first = report.find(": a file, opened with access 0x100004\n");
  size_t const second = report.find(": a folder, opened with access 0x100001\n");
  EXPECT_NE(first, std::string::npos) << report;
  EXPECT_NE(second, std::string::npos) << report;
  EXPECT_LT(first, second);
  EXPECT_DEATH(ntoshost::requireNoHandles("this test"),
               "ntos: this test left 2 open file handles behind\\.");
  file.close();
  folder.close();
  ntoshost::requireNoHandles("this test");
}

TEST_F(FileControls, HandlesOfTheKernelAreNegativeAndNotUsedAgain) {
  tOpenedFile first(kFileName);
  HANDLE const former = first.handle;
  EXPECT_LT(reinterpret_cast<i64>(former), 0);
  first.close();
  tOpenedFile const second(kFileName);
  EXPECT_NE(second.handle, former);
}
