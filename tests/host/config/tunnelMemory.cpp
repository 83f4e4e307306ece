// Requests in memory that ends, in another process, of absurd sizes, and without kernel memory.

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <memory>
#include <string>

#include "ntos/driveFolder.h"
#include "oxdiagk/stateRequest.h"
#include "oxdiagk/tFileTraceDestination.h"
#include "oxdiagk/tTrace.h"
#include "support/tRecordingConfigurable.h"
#include "support/tunnelRecords.h"
#include "trace/startedModules.h"
#include "trace/tLastBytes.h"
#include "trace/tRaisedIrql.h"
#include "vexk/iLib.h"

namespace {

using namespace nOXDIAG100;

constexpr size_t kPage = 4096;
constexpr size_t kHeader = sizeof(tTunnelHeader);
constexpr size_t kRecord = sizeof(tTunnelRecord);

void sendBytes(tLastBytes const& request) {
  tConfigTunnel::getInstance().dispatch(request.address());
}

// A process that runs `body` and waits to be looked at.
class tUserProcess {
 public:
  template <class Body>
  explicit tUserProcess(Body body) : pid(fork()) {
    if (pid != 0) {
      waitpid(pid, nullptr, WUNTRACED);
      return;
    }
    body();
    raise(SIGSTOP);
    _exit(0);
  }
  ~tUserProcess() {
    ntoshost::setUserProcess(0);
    kill(pid, SIGKILL);
    waitpid(pid, nullptr, 0);
  }
  tUserProcess(tUserProcess const&) = delete;
  tUserProcess& operator=(tUserProcess const&) = delete;

  pid_t const pid;
};

}  // namespace

TEST(TunnelMemory, RecordsUpToTheEndOfMemoryRun) {
  tRegisteredRecorder recorder;
  tTestRequest const request(recorder.handle, makeRecord(6), makeRecord(7));
  sendBytes(tLastBytes(&request, kHeader + 2 * kRecord));
  EXPECT_STREQ(recorder.calls(), "push pop ");
}

TEST(TunnelMemory, ARecordThatIsNotWhollyThereEndsTheRequest) {
  tTestRequest const request(kNoHandle, makeRecord(6), makeRecord(7));
  for (size_t missing : {size_t{1}, kRecord / 2, kRecord - 1, kRecord}) {
    tRegisteredRecorder recorder;
    tTestRequest own = request;
    own.header.handle = recorder.handle;
    sendBytes(tLastBytes(&own, kHeader + 2 * kRecord - missing));
    EXPECT_STREQ(recorder.calls(), "push ") << missing;
  }
}

TEST(TunnelMemory, AHeaderThatIsNotWhollyThereIsNoRequest) {
  tRegisteredRecorder recorder;
  for (size_t size = 0; size <= kHeader; ++size) {
    tTestRequest const request(recorder.handle, makeRecord(6));
    sendBytes(tLastBytes(&request, size));
  }
  EXPECT_STREQ(recorder.calls(), "");
}

TEST(TunnelMemory, TheLargestCountRunsWhatIsThere) {
  tRegisteredRecorder recorder;
  tTestRequest request(recorder.handle, makeRecord(6), makeRecord(7));
  request.header.count = 0xFFFFFFFF;
  sendBytes(tLastBytes(&request, kHeader + 2 * kRecord));
  EXPECT_STREQ(recorder.calls(), "push pop ");
}

TEST(TunnelMemory, ManyPagesOfRecordsRun) {
  constexpr u32 kCount = 1000;
  struct {
    tTunnelHeader header;
    tTunnelRecord records[kCount];
  } static request;
  u32 handles[kCount] = {};
  request.header = {kNoHandle, kCount};
  for (u32 index = 0; index < kCount; ++index) {
    request.records[index] = acquireRecord(&handles[index], "assert");
  }
  tConfigTunnel::getInstance().dispatch(addressOf(&request));
  for (u32 index = 0; index < kCount; ++index) {
    EXPECT_EQ(handles[index], handles[0] + index);
    releaseInstance(handles[index]);
  }
}

TEST(TunnelMemory, OptionTextIsTakenAsFarAsItCanBeRead) {
  tRegisteredRecorder recorder;
  tLastBytes const text("--checks", 8);
  tTestRequest(recorder.handle, makeRecord(4, text.address(), 9), makeRecord(4, text.address(), 8),
               makeRecord(4, text.address() + 2, 5000))
      .send();
  EXPECT_STREQ(recorder.calls(), "configure(--checks) configure(--checks) configure(checks) ");
}

TEST(TunnelMemory, ANameIsTakenAsFarAsItCanBeRead) {
  u32 handle = 1;
  tLastBytes const name("assert", 6);
  tTestRequest(kNoHandle, makeRecord(1, addressOf(&handle), name.address(), 1000)).send();
  EXPECT_NE(handle, kNoHandle);
  releaseInstance(handle);
  tTestRequest(kNoHandle, makeRecord(1, addressOf(&handle), name.address() + 1, 1000)).send();
  EXPECT_EQ(handle, kNoHandle);
}

TEST(TunnelMemory, InquiredTextIsWrittenAsFarAsMemoryGoes) {
  tRegisteredRecorder recorder;
  tLastBytes const buffer(5);
  u32 needed = 0;
  tTestRequest(recorder.handle, inquireRecord(buffer.bytes, 100, &needed)).send();
  EXPECT_EQ(buffer.text(5), " --re");
  EXPECT_EQ(needed, 15u);
}

TEST(TunnelMemory, ResultsAreNotWrittenToReadOnlyMemory) {
  tRegisteredRecorder recorder;
  void* const page = mmap(nullptr, kPage, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  tTestRequest(recorder.handle, makeRecord(1, addressOf(page), addressOf("assert"), 6),
               makeRecord(5, addressOf(page), 8, addressOf(page)), makeRecord(6))
      .send();
  EXPECT_EQ(*static_cast<u64*>(page), 0u);
  EXPECT_STREQ(recorder.calls(), "measure inquire push ");
  munmap(page, kPage);
  releaseInstance(recorder.handle + 1);
}

TEST(TunnelMemory, TheLargestLengthAddsItsTerminatorIn64Bits) {
  tRegisteredRecorder recorder;
  u32 handle = 1;
  tTestRequest(recorder.handle, makeRecord(4, addressOf("--checks"), 0xFFFFFFFF), makeRecord(6),
               makeRecord(1, addressOf(&handle), addressOf("assert"), 0xFFFFFFFF))
      .send();
  // No 4 GiB for the text: options are left out, and a name without memory means the trace stream.
  EXPECT_STREQ(recorder.calls(), "push ");
  i32 status = 0;
  EXPECT_TRUE(tInstanceRegistry::getInstance().find(handle, status) == &tTrace::getInstance());
  releaseInstance(handle);
}

TEST(TunnelMemory, TheLargestBufferOnlyMeasuresWhenThereIsNoMemoryForTheText) {
  tRegisteredRecorder recorder;
  char buffer[16] = "untouched";
  u32 needed = 0;
  ntoshost::failNth(ntoshost::kFaultMemory, 1);
  tTestRequest(recorder.handle, inquireRecord(buffer, 0xFFFFFFFF, &needed), makeRecord(6)).send();
  ntoshost::clearFaults();
  EXPECT_STREQ(buffer, "untouched");
  EXPECT_EQ(needed, 15u);
  EXPECT_STREQ(recorder.calls(), "measure push ");
  EXPECT_EQ(recorder.lastSize, 0u);
}

TEST(TunnelMemory, TextOfTheLargestSizeIsTakenAndOneByteMoreIsNot) {
  tRegisteredRecorder recorder;
  std::string const text("--checks\0", 9);
  std::string const longText = text + std::string(kTunnelMostBytes, 'x');
  tTestRequest(recorder.handle, makeRecord(4, addressOf(longText.data()), kTunnelMostBytes - 1),
               makeRecord(4, addressOf(longText.data()), kTunnelMostBytes),
               makeRecord(4, addressOf(longText.data()), kTunnelMostBytes + 1))
      .send();
  EXPECT_STREQ(recorder.calls(), "configure(--checks) configure(--checks) ");
}

TEST(TunnelMemory, ANameThatIsTooLongMeansTheTraceStream) {
  std::string const name = "assert" + std::string(kTunnelMostBytes, 'x');
  for (u32 length : {kTunnelMostBytes, kTunnelMostBytes + 1}) {
    u32 handle = kNoHandle;
    tTestRequest(kNoHandle, makeRecord(1, addressOf(&handle), addressOf(name.data()), length))
        .send();
    i32 status = 0;
    bool const isTrace =
        tInstanceRegistry::getInstance().find(handle, status) == &tTrace::getInstance();
    EXPECT_EQ(isTrace, length > kTunnelMostBytes);
    releaseInstance(handle);
  }
}

TEST(TunnelMemory, EveryRecordRunsHoweverManyThereAre) {
  constexpr u32 kRecords = 0x10001;
  struct tRequest {
    tTunnelHeader header;
    tTunnelRecord records[kRecords];
  };
  tRegisteredRecorder recorder;
  auto const request = std::make_unique<tRequest>();
  request->header = {recorder.handle, kRecords};
  request->records[0] = makeRecord(6);
  request->records[kRecords - 1] = makeRecord(7);
  tConfigTunnel::getInstance().dispatch(addressOf(request.get()));
  EXPECT_STREQ(recorder.calls(), "push pop ");
}

TEST(TunnelMemory, WithoutMemoryANameMeansTheTraceStream) {
  u32 handle = 1;
  ntoshost::failNth(ntoshost::kFaultMemory, 1);
  tTestRequest(kNoHandle, acquireRecord(&handle, "assert")).send();
  ntoshost::clearFaults();
  i32 status = 0;
  EXPECT_TRUE(tInstanceRegistry::getInstance().find(handle, status) == &tTrace::getInstance());
  releaseInstance(handle);
}

TEST(TunnelMemory, WithoutMemoryForTheHandleItIsNone) {
  for (u64 call : {2u, 3u}) {
    u32 handle = 1;
    ntoshost::failNth(ntoshost::kFaultMemory, call);
    tTestRequest(kNoHandle, acquireRecord(&handle, "assert")).send();
    ntoshost::clearFaults();
    EXPECT_EQ(ntoshost::faultsInjected(), 1u);
    EXPECT_EQ(handle, kNoHandle);
  }
}

// Nobody could ever release it.
TEST(TunnelMemory, AHandleThatCannotBeWrittenIsReleased) {
  u64 const before = ntoshost::outstandingBlocks();
  tLastBytes const half(sizeof(u32) - 1);
  for (u64 const address : {u64{0}, half.address()}) {
    tTunnelRecord record = acquireRecord(nullptr, "assert");
    record.address = address;
    tTestRequest(kNoHandle, record).send();
    EXPECT_EQ(ntoshost::outstandingBlocks(), before);
  }
}

TEST(TunnelMemory, EveryFailedAllocationIsThatOfOneRecord) {
  tRegisteredRecorder recorder;
  u64 const failures = ntoshost::failEachCall(ntoshost::kFaultMemory, [&](u64 n) {
    recorder.clear();
    u64 const before = ntoshost::outstandingBlocks();
    char buffer[16] = {};
    u32 needed = 0;
    tTestRequest(recorder.handle, makeRecord(6), textRecord("--a"),
                 inquireRecord(buffer, sizeof(buffer), &needed), makeRecord(7))
        .send();
    EXPECT_EQ(ntoshost::outstandingBlocks(), before);
    EXPECT_EQ(needed, 15u);
    EXPECT_STREQ(buffer, n == 2 ? "" : recorder.settings);
    char const* const wanted[] = {"push measure inquire pop ", "push configure(--a) measure pop ",
                                  "push configure(--a) measure inquire pop "};
    EXPECT_STREQ(recorder.calls(), wanted[n - 1]);
  });
  EXPECT_EQ(failures, 2u);
}

TEST(TunnelMemory, EveryFailedCopyIsThatOfOneRecordOrEndsTheRequest) {
  // In order: the header, a record and its text, a record and its two results, a record.
  char const* const wanted[] = {"",
                                "",
                                "configure() measure inquire push ",
                                "configure(--a) ",
                                "configure(--a) measure inquire push ",
                                "configure(--a) measure inquire push ",
                                "configure(--a) measure inquire ",
                                "configure(--a) measure inquire push "};
  tRegisteredRecorder recorder;
  u64 const failures = ntoshost::failEachCall(ntoshost::kFaultUserCopy, [&](u64 n) {
    recorder.clear();
    char buffer[16] = {};
    u32 needed = 0;
    tTestRequest(recorder.handle, textRecord("--a"), inquireRecord(buffer, sizeof(buffer), &needed),
                 makeRecord(6))
        .send();
    ASSERT_LE(n, std::size(wanted));
    EXPECT_STREQ(recorder.calls(), wanted[n - 1]);
    EXPECT_STREQ(buffer, n == 3 || n > 5 ? recorder.settings : "");
    EXPECT_EQ(needed, n == 3 || n == 5 || n > 6 ? 15u : 0u);
  });
  EXPECT_EQ(failures, 7u);
}

TEST(TunnelMemory, ServesTheMemoryOfAnotherProcess) {
  static u32 handle = 77;
  static char name[] = "nothing";
  static tTestRequest request(kNoHandle, makeRecord(0));
  tUserProcess const user([] {
    std::memcpy(name, "assert", sizeof "assert");
    request = tTestRequest(kNoHandle, acquireRecord(&handle, name));
  });
  ASSERT_TRUE(ntoshost::setUserProcess(user.pid));
  request.send();
  u32 theirs = 0;
  EXPECT_EQ(ntoshost::copyFromUser(&theirs, addressOf(&handle), sizeof theirs), sizeof theirs);
  EXPECT_EQ(handle, 77u);
  EXPECT_GE(theirs, kFirstHandle);
  releaseInstance(theirs);
}

TEST(TunnelMemory, AnAddressOfTheKernelIsNoneOfTheProcess) {
  // Memory that only this process has.
  tLastBytes const own("untouched", 10);
  static u32 handle = 77;
  static tTestRequest request(kNoHandle, makeRecord(0));
  u64 const bytes = own.address();
  munmap(own.bytes - (bytes % kPage), kPage);
  tUserProcess const user(
      [&] { request = tTestRequest(kNoHandle, makeRecord(1, addressOf(&handle), bytes, 5)); });
  void* const again = mmap(own.bytes - (bytes % kPage), kPage, PROT_READ | PROT_WRITE,
                           MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0);
  ASSERT_NE(again, MAP_FAILED);
  std::memcpy(own.bytes, "trace", sizeof "trace");
  ASSERT_TRUE(ntoshost::setUserProcess(user.pid));
  request.send();
  u32 theirs = 1;
  ntoshost::copyFromUser(&theirs, addressOf(&handle), sizeof theirs);
  EXPECT_EQ(theirs, kNoHandle);
}

TEST(TunnelMemory, AProcessThatIsGoneIsNotServed) {
  tRegisteredRecorder recorder;
  static tTestRequest request(recorder.handle, makeRecord(6));
  tUserProcess const user([] {});
  ASSERT_TRUE(ntoshost::setUserProcess(user.pid));
  kill(user.pid, SIGKILL);
  waitpid(user.pid, nullptr, 0);
  request.send();
  EXPECT_STREQ(recorder.calls(), "");
}

TEST(TunnelMemory, RecordsBehindAHeaderThatCannotBeReadAreNotServed) {
  auto* const pages = static_cast<char*>(
      mmap(nullptr, 2 * kPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
  ASSERT_NE(pages, MAP_FAILED);
  u32 handle = 77;
  tTunnelRecord const record = acquireRecord(&handle, "assert");
  std::memcpy(pages + kPage, &record, kRecord);
  mprotect(pages, kPage, PROT_NONE);
  tTestRequest(kNoHandle, makeRecord(0), makeRecord(0)).send();
  tConfigTunnel::getInstance().dispatch(addressOf(pages + kPage - kHeader));
  EXPECT_EQ(handle, 77u);
  munmap(pages, 2 * kPage);
}

TEST(StateMemory, AnAnswerThatIsCutByTheEndOfMemoryLeavesItsSizeAlone) {
  for (size_t room = 0; room < sizeof(tStateAnswer); ++room) {
    tLastBytes const answer(room);
    tStateRequest const request = {answer.address(), sizeof(tStateAnswer), 0};
    i32 status = 0;
    iLib::deliver(kStateName, sizeof(kStateName) - 1, addressOf(&request), status);
    size_t const ofSize = std::min(room, sizeof(u32));
    EXPECT_EQ(answer.text(ofSize), std::string(ofSize, '\0')) << room;
  }
}

TEST(StateMemory, TheAnswerTellsOfATextThatAFileLost) {
  tDriveFolder const drive;
  tFileTraceDestination file;
  char name[] = "C:/lost.out";
  char* words[] = {name};
  file.configure(1, words);
  ASSERT_EQ(file.open(), 1u);
  u64 const before = tFileTraceDestination::countLostTexts();
  {
    tRaisedIrql const raised(DISPATCH_LEVEL);
    file.put("lost");
  }
  tStateAnswer answer = {};
  tStateRequest const request = {addressOf(&answer), sizeof(answer), 0};
  i32 status = 0;
  iLib::deliver(kStateName, sizeof(kStateName) - 1, addressOf(&request), status);
  EXPECT_EQ(answer.lostFileTexts, before + 1);
}
