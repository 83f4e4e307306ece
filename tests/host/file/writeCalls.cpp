// What the file destination asks the kernel for when it writes.

#include "fileCalls.h"
#include "ntos/fastMutex.h"
#include "ntos/thread.h"
#include "ntoshost/thread.h"

namespace {

using tLengths = std::vector<u32>;

class FileWriteCalls : public tFileTest {
 protected:
  FileWriteCalls() {
    configureWith(file, "C:/one.out", "overwrite");
    EXPECT_EQ(file.open(), 1u);
    handle = callsOf(FileCallKind::Create)[1].handle;
    ntoshost::forgetFileCalls();
  }

  // The lengths of the writes of one text.
  tLengths put(std::string const& text) {
    ntoshost::forgetFileCalls();
    file.put(text.data(), static_cast<unsigned int>(text.size()));
    return writtenLengths();
  }

  tFileTraceDestination file;
  HANDLE handle = nullptr;
};

std::string letters(size_t count) {
  return std::string(count, 'x');
}

}  // namespace

TEST_F(FileWriteCalls, WriteHasNoEventNoRoutineAndNoOffset) {
  put("a\nb");
  ASSERT_EQ(callText(), "write ");
  FileCall const write = ntoshost::fileCall(0);
  EXPECT_EQ(write.handle, handle);
  EXPECT_FALSE(write.hasOffset);
  EXPECT_EQ(bytesOf(write), "a\r\nb");
}

TEST_F(FileWriteCalls, EmptyTextIsAWriteOfNoBytes) {
  EXPECT_EQ(put(""), tLengths{0});
  ntoshost::forgetFileCalls();
  file.put("");
  file.put(nullptr);
  file.put(nullptr, 0);
  file.put(nullptr, 5);
  EXPECT_EQ(writtenLengths(), (tLengths{0, 0, 0, 0}));
}

TEST_F(FileWriteCalls, BlocksHave512Bytes) {
  EXPECT_EQ(put(letters(511)), tLengths{511});
  EXPECT_EQ(put(letters(512)), (tLengths{512, 0}));
  EXPECT_EQ(put(letters(513)), (tLengths{512, 1}));
  EXPECT_EQ(put(letters(1023)), (tLengths{512, 511}));
  EXPECT_EQ(put(letters(1024)), (tLengths{512, 512, 0}));
}

TEST_F(FileWriteCalls, LineFeedThatCrossesTheLimitMakesABlockOf513Bytes) {
  EXPECT_EQ(put(letters(511) + "\n"), (tLengths{513, 0}));
  EXPECT_EQ(bytesOf(ntoshost::fileCall(0)), letters(511) + "\r\n");
  EXPECT_EQ(put(letters(511) + "\nabc"), (tLengths{513, 3}));
}

TEST_F(FileWriteCalls, LineFeedThatFillsABlockEndsIt) {
  EXPECT_EQ(put(letters(510) + "\n"), (tLengths{512, 0}));
  EXPECT_EQ(put(letters(509) + "\n"), tLengths{511});
}

TEST_F(FileWriteCalls, LineFeedsAloneFillBlocksToo) {
  EXPECT_EQ(put(std::string(256, '\n')), (tLengths{512, 0}));
  EXPECT_EQ(put("x" + std::string(256, '\n')), (tLengths{513, 0}));
}

TEST_F(FileWriteCalls, BlockAfterABlockHasNothingOfIt) {
  put(letters(512) + std::string(2, '\0'));
  EXPECT_EQ(bytesOf(ntoshost::fileCall(1)), std::string(2, '\0'));
}

TEST_F(FileWriteCalls, ClosedDestinationAsksForNothing) {
  file.close();
  EXPECT_EQ(put(letters(600)), tLengths{});
  file.put("x");
  EXPECT_EQ(ntoshost::fileCallsSeen(), 0u);
}

TEST_F(FileWriteCalls, OtherErrorsAreIgnored) {
  for (NTSTATUS status :
       {STATUS_DISK_FULL, STATUS_ACCESS_DENIED, STATUS_INVALID_HANDLE, STATUS_SHARING_VIOLATION,
        ntosStatus(0xC0000023), ntosStatus(0xC0000025)}) {
    ntoshost::failFileCalls(FileCallKind::Write, 1, 1, status);
    EXPECT_EQ(put(letters(512) + "end"), (tLengths{512, 3}));
    EXPECT_EQ(callText(), "write write ");
  }
}

TEST_F(FileWriteCalls, FullDriveLosesBlocksAndTheStreamGoesOn) {
  ntoshost::limitDrive('C', 514);
  EXPECT_EQ(put(letters(512) + "lost"), (tLengths{512, 4}));
  EXPECT_EQ(callsOf(FileCallKind::Write)[1].status, STATUS_DISK_FULL);
  file.put("ok");
  EXPECT_EQ(drive.read("one.out"), letters(512) + "ok");
}

TEST_F(FileWriteCalls, NothingIsAskedForAtDispatchLevelAndAbove) {
  for (KIRQL level : {DISPATCH_LEVEL, KIRQL{3}, HIGH_LEVEL}) {
    tRaisedIrql const raised(level);
    put(letters(600));
    file.put("dropped");
    EXPECT_EQ(ntoshost::fileCallsSeen(), 0u) << static_cast<u32>(level);
  }
  file.put("seen");
  EXPECT_EQ(drive.read("one.out"), "seen");
}

TEST_F(FileWriteCalls, NothingIsAskedForWhereTheKernelCouldNotFinishIt) {
  FAST_MUTEX mutex;
  ExInitializeFastMutex(&mutex);
  ExAcquireFastMutex(&mutex);
  put(letters(600));
  EXPECT_EQ(ntoshost::fileCallsSeen(), 0u);
  ExReleaseFastMutex(&mutex);
  KeEnterGuardedRegion();
  file.put("dropped");
  EXPECT_EQ(ntoshost::fileCallsSeen(), 0u);
  KeLeaveGuardedRegion();
  KeEnterCriticalRegion();
  file.put("seen");
  KeLeaveCriticalRegion();
  EXPECT_EQ(drive.read("one.out"), "seen");
}

TEST_F(FileWriteCalls, NeitherIsItWhereAnotherFileIsOpenedThere) {
  tFileTraceDestination other;
  configureWith(other, "nowhere");
  KeEnterGuardedRegion();
  EXPECT_EQ(other.open(), 0u);
  file.put("dropped");
  EXPECT_EQ(ntoshost::fileCallsSeen(), 0u);
  KeLeaveGuardedRegion();
  file.put("seen");
  EXPECT_EQ(drive.read("one.out"), "seen");
}

TEST_F(FileWriteCalls, TextsThatAreLostAreCounted) {
  u64 const before = tFileTraceDestination::countLostTexts();
  put("kept");
  EXPECT_EQ(tFileTraceDestination::countLostTexts(), before);
  {
    tRaisedIrql const raised(DISPATCH_LEVEL);
    put(letters(2000));  // one text of four blocks
    file.put("");        // of which nothing can be lost
    file.put("lost");
  }
  EXPECT_EQ(tFileTraceDestination::countLostTexts(), before + 2);
  {
    tRaisedIrql const raised(APC_LEVEL);
    file.put("lost");
  }
  EXPECT_EQ(tFileTraceDestination::countLostTexts(), before + 3);
  ntoshost::limitDrive('C', 513);
  put(letters(512) + "lost");
  EXPECT_EQ(tFileTraceDestination::countLostTexts(), before + 4);
  file.close();
  file.put("to nobody");
  EXPECT_EQ(tFileTraceDestination::countLostTexts(), before + 4);
}

TEST_F(FileWriteCalls, TextWhoseFileCannotBeOpenedAgainIsLost) {
  u64 const before = tFileTraceDestination::countLostTexts();
  ntoshost::invalidateHandle(handle);
  file.put("kept");
  EXPECT_EQ(tFileTraceDestination::countLostTexts(), before);
  ntoshost::invalidateHandle(callsOf(FileCallKind::Create).back().handle);
  ntoshost::unmountDrive('C');
  file.put("lost");
  EXPECT_EQ(tFileTraceDestination::countLostTexts(), before + 1);
}

TEST_F(FileWriteCalls, EveryWriteThatFailsInTurnLosesItsBlockOnly) {
  u64 const failures = ntoshost::failEachCall(ntoshost::kFaultFile, [&](u64 n) {
    EXPECT_EQ(put(letters(1024) + "end"), (tLengths{512, 512, 3})) << n;
    EXPECT_EQ(ntoshost::outstandingHandles(), 2u);
  });
  EXPECT_EQ(failures, 3u);
}

TEST_F(FileWriteCalls, ATextWithoutOneOfItsBlocksIsLost) {
  u64 const before = tFileTraceDestination::countLostTexts();
  ntoshost::failFileCalls(FileCallKind::Write, 1, 1, STATUS_DISK_FULL);
  EXPECT_EQ(put(letters(512) + "end"), (tLengths{512, 3}));
  EXPECT_EQ(tFileTraceDestination::countLostTexts(), before + 1);
  EXPECT_EQ(drive.read("one.out"), "end");
}

TEST_F(FileWriteCalls, TextThatTheFileOpenedAnewDoesNotTakeEitherIsLost) {
  u64 const before = tFileTraceDestination::countLostTexts();
  ntoshost::invalidateHandle(handle);
  ntoshost::failFileCalls(FileCallKind::Write, 2, 1, STATUS_DISK_FULL);
  file.put("lost");
  EXPECT_EQ(callText(), "write close close create create write ");
  EXPECT_EQ(tFileTraceDestination::countLostTexts(), before + 1);
}

// As Wine's kernel does, whose writes come back there.
TEST_F(FileWriteCalls, TextIsWrittenInACriticalRegionWhereTheKernelSaysThatNoApcsCome) {
  ntoshost::sayAllApcsDisabledInRegions(true);
  EXPECT_EQ(file.open(), 1u);  // and learns it
  KeEnterCriticalRegion();
  file.put("seen");
  KeLeaveCriticalRegion();
  ntoshost::sayAllApcsDisabledInRegions(false);
  EXPECT_EQ(drive.read("one.out"), "seen");
  configureWith(file, "append");
  EXPECT_EQ(file.open(), 1u);
  KeEnterGuardedRegion();
  file.put("dropped");
  KeLeaveGuardedRegion();
  EXPECT_EQ(drive.read("one.out"), "seen");
}

TEST_F(FileWriteCalls, AWriteThatIsGoodButNotWholeLosesItsText) {
  u64 const before = tFileTraceDestination::countLostTexts();
  ntoshost::failFileCalls(FileCallKind::Write, 1, 1, STATUS_PENDING);  // moves no byte
  EXPECT_EQ(put("abc"), tLengths{3});
  EXPECT_EQ(tFileTraceDestination::countLostTexts(), before + 1);
  EXPECT_EQ(put("abc"), tLengths{3});
  EXPECT_EQ(tFileTraceDestination::countLostTexts(), before + 1);
}
