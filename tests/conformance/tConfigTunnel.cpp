// Requests from user mode.

#include "config/tConfigTunnel.h"

#include "conformance/harness.h"
#include "oxdiagk/tAssertConfiguration.h"
#include "support/tRecordingConfigurable.h"
#include "support/tTexts.h"
#include "support/tunnelRecords.h"
#include "vexk/iLib.h"
#include "vexk/statusCodes.h"

namespace {

using namespace nOXDIAG100;

// Nothing is there on any target.
constexpr u64 kNowhere = 16;
constexpr u64 kKernelSpace = 0xFFFF800000000000;

bool checksAreOn() {
  return tAssertConfiguration::getInstance().checksAreEnabled("default");
}

// A handle of the assertion configuration, whose settings are as before at the end.
class tContractsHandle {
 public:
  tContractsHandle() {
    char name[] = "assert";
    handle = acquireInstance(name);
    pushConfiguration(handle);
    configure(handle, "--category default --checks on");
  }
  ~tContractsHandle() {
    popConfiguration(handle);
    releaseInstance(handle);
  }
  tContractsHandle(tContractsHandle const&) = delete;
  tContractsHandle& operator=(tContractsHandle const&) = delete;

  u32 handle;
};

}  // namespace

TEST(ConfigTunnel, HasItsName) {
  EXPECT_STREQ(kTunnelName, "nOXDIAG100://nConfigTunnel");
}

TEST(ConfigTunnel, ACountOfZeroDoesNothing) {
  tRegisteredRecorder recorder;
  tTestRequest request(recorder.handle, makeRecord(6));
  request.header.count = 0;
  request.send();
  EXPECT_STREQ(recorder.calls(), "");
}

TEST(ConfigTunnel, AcquireWritesAHandle) {
  u32 handle = 1;
  tTestRequest(kNoHandle, acquireRecord(&handle, "assert")).send();
  EXPECT_GE(handle, 0xC0000000u);
  EXPECT_LE(handle, 0xCFFFFFFEu);
  i32 status = 0;
  EXPECT_TRUE(tInstanceRegistry::getInstance().find(handle, status) ==
              &tAssertConfiguration::getInstance());
  tTestRequest(handle, makeRecord(2)).send();
  EXPECT_TRUE(tInstanceRegistry::getInstance().find(handle, status) == nullptr);
}

TEST(ConfigTunnel, AnUnknownNameGetsNoHandle) {
  for (char const* name : tTexts{"", "kernel", "nothing", "/trace"}) {
    u32 handle = 1;
    tTestRequest(kNoHandle, acquireRecord(&handle, name)).send();
    EXPECT_EQ(handle, kNoHandle);
  }
}

TEST(ConfigTunnel, ANameEndsAtItsLength) {
  u32 handle = 1;
  tTestRequest(kNoHandle, makeRecord(1, addressOf(&handle), addressOf("assert"), 5)).send();
  EXPECT_EQ(handle, kNoHandle);
  tTestRequest(kNoHandle, makeRecord(1, addressOf(&handle), addressOf("assert"), 6)).send();
  EXPECT_NE(handle, kNoHandle);
  releaseInstance(handle);
}

TEST(ConfigTunnel, ANameThatCannotBeReadIsEmpty) {
  u64 const names[] = {0, kNowhere, kKernelSpace, ~u64{0}};
  for (u64 name : names) {
    u32 handle = 1;
    tTestRequest(kNoHandle, makeRecord(1, addressOf(&handle), name, 5)).send();
    EXPECT_EQ(handle, kNoHandle);
  }
}

TEST(ConfigTunnel, ANameOfLengthZeroIsEmpty) {
  u32 handle = 1;
  tTestRequest(kNoHandle, makeRecord(1, addressOf(&handle), addressOf("trace"), 0)).send();
  EXPECT_EQ(handle, kNoHandle);
}

TEST(ConfigTunnel, OnlyTheLowHalfOfALengthCounts) {
  u32 handle = 1;
  u64 const length = 0xFFFFFFFF00000005;
  tTestRequest(kNoHandle, makeRecord(1, addressOf(&handle), addressOf("trace"), length)).send();
  EXPECT_NE(handle, kNoHandle);
  releaseInstance(handle);
  tRegisteredRecorder recorder;
  tTestRequest(recorder.handle, makeRecord(4, addressOf("--break"), 0x100000003)).send();
  EXPECT_STREQ(recorder.calls(), "configure(--b) ");
}

TEST(ConfigTunnel, RunsTheRecordsInOrder) {
  tRegisteredRecorder recorder;
  char buffer[4];
  u32 needed = 0;
  tTestRequest(recorder.handle, makeRecord(6), makeRecord(3), textRecord("--a on"),
               inquireRecord(buffer, 4, &needed), inquireRecord(nullptr, 0, &needed), makeRecord(7),
               makeRecord(2), makeRecord(3))
      .send();
  EXPECT_STREQ(recorder.calls(), "push default configure(--a on) measure inquire measure pop ");
}

TEST(ConfigTunnel, ConfiguresInquiresAndRestores) {
  tContractsHandle const contracts;
  char buffer[5] = {'?', '?', '?', '?', '?'};
  u32 needed = 0;
  unsigned int wanted = 0;
  tAssertConfiguration::getInstance().inquire(nullptr, 0, &wanted);
  pushConfiguration(contracts.handle);
  tTestRequest(contracts.handle, textRecord("--checks off"), inquireRecord(buffer, 4, &needed))
      .send();
  EXPECT_FALSE(checksAreOn());
  EXPECT_EQ(__builtin_memcmp(buffer, " --\0?", 5), 0);
  EXPECT_EQ(needed, wanted + 1);  // "off" for "on"
  tTestRequest(contracts.handle, makeRecord(7)).send();
  EXPECT_TRUE(checksAreOn());
}

TEST(ConfigTunnel, InquireWritesNoMoreThanIsNeeded) {
  tRegisteredRecorder recorder;
  char buffer[32];
  __builtin_memset(buffer, '?', sizeof(buffer));
  u32 needed = 0;
  tTestRequest(recorder.handle, inquireRecord(buffer, sizeof(buffer), &needed)).send();
  EXPECT_EQ(needed, 15u);
  EXPECT_EQ(recorder.lastSize, 15u);
  EXPECT_EQ(__builtin_memcmp(buffer, " --recorder on\0?", 16), 0);
}

TEST(ConfigTunnel, InquireCutsAtTheSize) {
  u32 const sizes[] = {1, 2, 14, 15, 16};
  for (u32 size : sizes) {
    tRegisteredRecorder recorder;
    char buffer[17];
    __builtin_memset(buffer, '?', sizeof(buffer));
    u32 needed = 0;
    tTestRequest(recorder.handle, inquireRecord(buffer, size, &needed)).send();
    u32 const written = size < 15 ? size : 15;
    EXPECT_EQ(needed, 15u);
    EXPECT_EQ(recorder.lastSize, written);
    EXPECT_EQ(__builtin_memcmp(buffer, recorder.settings, written - 1), 0);
    EXPECT_EQ(buffer[written - 1], '\0');
    EXPECT_EQ(buffer[written], '?');
  }
}

TEST(ConfigTunnel, WhatAnObjectOnlyClaimsToHaveWrittenIsZeros) {
  tRegisteredRecorder recorder;
  recorder.needed = 1000;
  char buffer[64];
  __builtin_memset(buffer, '?', sizeof(buffer));
  u32 needed = 0;
  tTestRequest(recorder.handle, inquireRecord(buffer, sizeof(buffer), &needed)).send();
  ASSERT_EQ(needed, 1000u);
  ASSERT_EQ(buffer[sizeof(buffer) - 1], '\0');
  EXPECT_STREQ(buffer, recorder.settings);
  for (u32 index = 15; index < sizeof(buffer); ++index) EXPECT_EQ(buffer[index], '\0');
}

TEST(ConfigTunnel, InquireWithoutBufferOrSizeOnlyMeasures) {
  tRegisteredRecorder recorder;
  char buffer[] = "untouched";
  u32 needed = 0;
  tTestRequest(recorder.handle, inquireRecord(nullptr, 8, &needed)).send();
  EXPECT_EQ(needed, 15u);
  needed = 0;
  tTestRequest(recorder.handle, inquireRecord(buffer, 0, &needed)).send();
  EXPECT_EQ(needed, 15u);
  EXPECT_STREQ(recorder.calls(), "measure measure ");
  EXPECT_STREQ(buffer, "untouched");
}

TEST(ConfigTunnel, TheNeededSizeMayGoNowhere) {
  tRegisteredRecorder recorder;
  u64 const addresses[] = {0, kNowhere, kKernelSpace};
  for (u64 address : addresses) {
    char buffer[16] = {};
    tTestRequest(recorder.handle, makeRecord(5, addressOf(buffer), sizeof(buffer), address),
                 makeRecord(6))
        .send();
    EXPECT_STREQ(buffer, recorder.settings);
  }
  EXPECT_STREQ(recorder.calls(), "measure inquire push measure inquire push measure inquire push ");
}

TEST(ConfigTunnel, TheNeededSizeIsWrittenAfterTheText) {
  tRegisteredRecorder recorder;
  alignas(4) char buffer[16] = {};
  tTestRequest(recorder.handle,
               makeRecord(5, addressOf(buffer), sizeof(buffer), addressOf(buffer + 4)))
      .send();
  EXPECT_EQ(__builtin_memcmp(buffer, " --r\x0F\0\0\0der on\0", 15), 0);
}

TEST(ConfigTunnel, InquireOfNoObjectWritesANeededSizeOfZeroAndNoText) {
  char buffer[] = "untouched";
  u32 needed = 77;
  tTestRequest(kNoHandle, inquireRecord(buffer, 4, &needed)).send();
  EXPECT_EQ(needed, 0u);
  EXPECT_STREQ(buffer, "untouched");
}

TEST(ConfigTunnel, UnknownOperationsAreSkipped) {
  tRegisteredRecorder recorder;
  tTestRequest(recorder.handle, makeRecord(6), makeRecord(0), makeRecord(8), makeRecord(~0u),
               makeRecord(0x10006), makeRecord(7))
      .send();
  EXPECT_STREQ(recorder.calls(), "push pop ");
}

TEST(ConfigTunnel, TheReservedFieldMeansNothing) {
  tRegisteredRecorder recorder;
  tTunnelRecord record = makeRecord(6);
  record.reserved = ~0u;
  tTestRequest(recorder.handle, record).send();
  EXPECT_STREQ(recorder.calls(), "push ");
}

TEST(ConfigTunnel, ABadAddressDoesNotStopTheRecordsBehindIt) {
  u64 const badAddresses[] = {0, kNowhere, kKernelSpace, ~u64{0}, ~u64{0} - 3};
  for (u64 bad : badAddresses) {
    tRegisteredRecorder recorder;
    tTestRequest(recorder.handle, makeRecord(5, bad, 8, bad), makeRecord(6), makeRecord(4, bad, 8),
                 makeRecord(7))
        .send();
    EXPECT_STREQ(recorder.calls(), bad == 0 ? "measure push configure() pop "
                                            : "measure inquire push configure() pop ");
  }
}

TEST(ConfigTunnel, AHandleThatCannotBeWrittenIsIssuedAllTheSame) {
  char name[] = "assert";
  u32 const before = acquireInstance(name);
  ASSERT_NE(before, kNoHandle);
  tTestRequest(kNoHandle, makeRecord(1, kNowhere, addressOf("assert"), 6)).send();
  u32 const after = acquireInstance(name);
  EXPECT_EQ(after, before + 2);
  for (u32 handle = before; handle <= before + 2; ++handle) releaseInstance(handle);
}

TEST(ConfigTunnel, TheHandleIsReadBeforeTheFirstRecord) {
  tRegisteredRecorder recorder;
  tTestRequest request(recorder.handle, makeRecord(6), makeRecord(6));
  request.records[0] = acquireRecord(&request.header.handle, "assert");
  request.send();
  EXPECT_NE(request.header.handle, recorder.handle);
  EXPECT_STREQ(recorder.calls(), "push ");
  releaseInstance(request.header.handle);
}

TEST(ConfigTunnel, TheCountIsReadBeforeTheFirstRecord) {
  tRegisteredRecorder recorder;
  tTestRequest request(recorder.handle, makeRecord(6), makeRecord(6), makeRecord(7));
  request.records[0] = inquireRecord(nullptr, 0, &request.header.count);
  request.header.count = 2;
  request.send();
  EXPECT_EQ(request.header.count, 15u);
  EXPECT_STREQ(recorder.calls(), "measure push ");
}

TEST(ConfigTunnel, AResultMayChangeALaterRecord) {
  tRegisteredRecorder recorder;
  recorder.needed = 7;
  tTestRequest request(recorder.handle, makeRecord(5), makeRecord(6));
  request.records[0].extra = addressOf(&request.records[1].operation);
  request.send();
  EXPECT_STREQ(recorder.calls(), "measure pop ");
}

TEST(ConfigTunnel, AResultMayOverwriteItsOwnRecord) {
  tRegisteredRecorder recorder;
  tTestRequest request(recorder.handle, makeRecord(5), makeRecord(6));
  tTunnelRecord& own = request.records[0];
  own.address = addressOf(&own);
  own.source = 15;
  own.extra = addressOf(&own.source);
  request.send();
  EXPECT_STREQ(reinterpret_cast<char const*>(&own), " --recorder on");
  EXPECT_EQ(own.source & 0xFFFFFFFF, 15u);
  EXPECT_STREQ(recorder.calls(), "measure inquire push ");
}

TEST(ConfigTunnel, ARequestThatCannotBeReadDoesNothing) {
  u64 const requests[] = {0, kNowhere, kKernelSpace, ~u64{0}, ~u64{0} - 7};
  for (u64 request : requests) {
    tConfigTunnel::getInstance().dispatch(request);
  }
  tRegisteredRecorder recorder;
  tTestRequest(recorder.handle, makeRecord(6)).send();
  EXPECT_STREQ(recorder.calls(), "push ");
}

TEST(ConfigTunnel, ARequestNeedsNoAlignment) {
  tRegisteredRecorder recorder;
  tTestRequest const request(recorder.handle, makeRecord(6), makeRecord(7));
  char bytes[sizeof(request) + 1];
  __builtin_memcpy(bytes + 1, &request, sizeof(request));
  tConfigTunnel::getInstance().dispatch(addressOf(bytes + 1));
  EXPECT_STREQ(recorder.calls(), "push pop ");
}

TEST(ConfigTunnel, OptionTextEndsAtANulByte) {
  tRegisteredRecorder recorder;
  tTestRequest(recorder.handle, makeRecord(4, addressOf("--a\0--b"), 7)).send();
  EXPECT_STREQ(recorder.calls(), "configure(--a) ");
}

TEST(ConfigTunnel, EmptyOptionTextIsHandedOn) {
  tRegisteredRecorder recorder;
  tTestRequest(recorder.handle, makeRecord(4, 0, 0)).send();
  EXPECT_STREQ(recorder.calls(), "configure() ");
}

TEST(ConfigTunnel, IsReachedThroughThePlatformByItsName) {
  tRegisteredRecorder recorder;
  tTestRequest const request(recorder.handle, makeRecord(6), makeRecord(7));
  i32 status = 0;
  iLib::deliver("nOXDIAG100://nConfigTunnel", 26, addressOf(&request), status);
  EXPECT_EQ(status, 0);
  EXPECT_STREQ(recorder.calls(), "push pop ");
  iLib::deliver("nOXDIAG100://nConfigTunnel", 25, addressOf(&request), status);
  EXPECT_EQ(status, kStatusNoDispatcher);
  EXPECT_STREQ(recorder.calls(), "push pop ");
}

TEST(ConfigTunnel, ASecondOneIsNotReachedAndTakesNothingAway) {
  tRegisteredRecorder recorder;
  tTestRequest const request(recorder.handle, makeRecord(6));
  i32 status = 0;
  {
    tConfigTunnel const second;
    iLib::deliver(second.getName(), 26, addressOf(&request), status);
  }
  iLib::deliver("nOXDIAG100://nConfigTunnel", 26, addressOf(&request), status);
  EXPECT_EQ(status, 0);
  EXPECT_STREQ(recorder.calls(), "push push ");
}
