// What the file calls do not put up with.

#include "ntos/irql.h"
#include "ntos/thread.h"
#include "openedFile.h"

namespace {

class FileViolationsDeathTest : public testing::Test {
 protected:
  NTSTATUS create(u32 length, u32 options, void* extended, u32 extendedLength) {
    UNICODE_STRING name;
    RtlInitUnicodeString(&name, kFileName);
    OBJECT_ATTRIBUTES attributes;
    InitializeObjectAttributes(&attributes, &name, 0, nullptr, nullptr);
    attributes.Length = length;
    HANDLE opened = nullptr;
    return ZwCreateFile(&opened, GENERIC_READ | SYNCHRONIZE, &attributes, &file.result, nullptr, 0,
                        kShareAll, FILE_OPEN, options, extended, extendedLength);
  }

  NTSTATUS write(HANDLE event, void* routine, u32* key) {
    return ZwWriteFile(file.handle, event, routine, nullptr, &file.result, "x", 1, nullptr, key);
  }

  tDriveFolder drive;
  tOpenedFile file{kFileName};
};

constexpr u32 kLength = sizeof(OBJECT_ATTRIBUTES);

template <class Call>
void atIrql(KIRQL level, Call call) {
  KIRQL previous;
  KeRaiseIrql(level, &previous);
  call();
}

}  // namespace

TEST_F(FileViolationsDeathTest, SecondCloseIsNamedAsOne) {
  EXPECT_DEATH((ZwClose(file.handle), ZwClose(file.handle)),
               "ntos: ZwClose was given 0x[0-9a-f]+, which was never opened or is closed "
               "already\\.\n$");
}

TEST_F(FileViolationsDeathTest, NullIsNotClosed) {
  EXPECT_DEATH(ZwClose(nullptr), "ZwClose was given .*, which was never opened");
}

TEST_F(FileViolationsDeathTest, NoCallIsMadeWithoutApcs) {
  char byte = 0;
  FILE_STANDARD_INFORMATION information;
  KeEnterGuardedRegion();
  EXPECT_DEATH(write(nullptr, nullptr, nullptr),
               "ntos: ZwWriteFile was called in a guarded region, where nothing tells the thread "
               "that it has ended\\.\n$");
  EXPECT_DEATH(create(kLength, FILE_SYNCHRONOUS_IO_NONALERT, nullptr, 0),
               "ZwCreateFile was called");
  EXPECT_DEATH(
      ZwReadFile(file.handle, nullptr, nullptr, nullptr, &file.result, &byte, 1, nullptr, nullptr),
      "ZwReadFile was called in a guarded region");
  EXPECT_DEATH(ZwQueryInformationFile(file.handle, &file.result, &information, sizeof(information),
                                      FileStandardInformation),
               "ZwQueryInformationFile was called in a guarded region");
  KeLeaveGuardedRegion();
  KeEnterCriticalRegion();
  EXPECT_EQ(write(nullptr, nullptr, nullptr), STATUS_SUCCESS);
  KeLeaveCriticalRegion();
}

TEST_F(FileViolationsDeathTest, EveryCallIsForPassiveLevel) {
  char byte = 0;
  FILE_STANDARD_INFORMATION information;
  EXPECT_DEATH(
      atIrql(APC_LEVEL, [&] { create(kLength, FILE_SYNCHRONOUS_IO_NONALERT, nullptr, 0); }),
      "ntos: ZwCreateFile was called at IRQL 1 \\(APC_LEVEL\\); it may be called up to "
      "IRQL 0 \\(PASSIVE_LEVEL\\)\\.\n$");
  EXPECT_DEATH(atIrql(APC_LEVEL, [&] { write(nullptr, nullptr, nullptr); }),
               "ZwWriteFile was called at IRQL 1");
  EXPECT_DEATH(atIrql(DISPATCH_LEVEL,
                      [&] {
                        ZwReadFile(file.handle, nullptr, nullptr, nullptr, &file.result, &byte, 1,
                                   nullptr, nullptr);
                      }),
               "ZwReadFile was called at IRQL 2");
  EXPECT_DEATH(atIrql(APC_LEVEL,
                      [&] {
                        ZwQueryInformationFile(file.handle, &file.result, &information,
                                               sizeof(information), FileStandardInformation);
                      }),
               "ZwQueryInformationFile was called at IRQL 1");
  EXPECT_DEATH(atIrql(APC_LEVEL, [&] { ZwClose(file.handle); }), "ZwClose was called at IRQL 1");
}

TEST_F(FileViolationsDeathTest, AttributesOfAnotherSizeAreRefused) {
  EXPECT_DEATH(create(kLength - 1, FILE_SYNCHRONOUS_IO_NONALERT, nullptr, 0),
               "ZwCreateFile was given object attributes whose Length is 47\\.");
}

TEST_F(FileViolationsDeathTest, AsynchronousFilesAreNotDone) {
  EXPECT_DEATH(create(kLength, 0, nullptr, 0),
               "ZwCreateFile was not asked for FILE_SYNCHRONOUS_IO_NONALERT; this is not done\\.");
}

TEST_F(FileViolationsDeathTest, ExtendedAttributesAreNotDone) {
  char extended = 0;
  EXPECT_DEATH(create(kLength, FILE_SYNCHRONOUS_IO_NONALERT, &extended, 0),
               "extended attributes; this is not done\\.");
  EXPECT_DEATH(create(kLength, FILE_SYNCHRONOUS_IO_NONALERT, nullptr, 1),
               "extended attributes; this is not done\\.");
}

TEST_F(FileViolationsDeathTest, EventsRoutinesAndKeysAreNotDone) {
  u32 key = 0;
  EXPECT_DEATH(write(&key, nullptr, nullptr), "ZwWriteFile was given an event, a completion");
  EXPECT_DEATH(write(nullptr, &key, nullptr), "ZwWriteFile was given an event, a completion");
  EXPECT_DEATH(write(nullptr, nullptr, &key), "ZwWriteFile was given an event, a completion");
}

TEST_F(FileViolationsDeathTest, OnlyOpenHandlesAreInvalidated) {
  EXPECT_DEATH(ntoshost::invalidateHandle(nullptr), "invalidateHandle was given .*, which is not");
}
