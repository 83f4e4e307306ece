#include "conformance/harness.h"
#include "vexk/eventLog.h"
#include "vexk/moduleInfo.h"
#include "vexk/statusCodes.h"

namespace {

// What a module's entry sees and says.
u32 calls = 0;
u32 lastReason = 0;
i32 answer = 0;

i32 moduleEntry(u32 reason) {
  ++calls;
  lastReason = reason;
  return answer;
}

// Nobody looks into it.
constinit tModulePackage package = {};

// A record with nothing in it but what registration asks for.
class tRecord {
 public:
  tRecord() {
    calls = 0;
    lastReason = 99;
    answer = 0;
  }

  i32 open(i32 status = 0) {
    libRegisterModuleWithVEX(info, status);
    return status;
  }

  i32 close(i32 status = 0) {
    libUnregisterModuleWithVEX(info, status);
    return status;
  }

  _tLibModuleInfo info = {&package, "record", &moduleEntry, 0};
};

// No failure of these tests is printed.
class tQuiet {
 public:
  tQuiet() : before(vexPrintEvents(kVexEventNever)) {}
  ~tQuiet() { vexPrintEvents(before); }
  tQuiet(tQuiet const&) = delete;
  tQuiet& operator=(tQuiet const&) = delete;

 private:
  u32 before;
};

}  // namespace

TEST(Modules, AreCalledWhenTheyAreRegisteredAndUnregistered) {
  tRecord record;
  EXPECT_EQ(0, record.open());
  EXPECT_EQ(1u, calls);
  EXPECT_EQ(0u, lastReason);
  EXPECT_EQ(0, record.close());
  EXPECT_EQ(2u, calls);
  EXPECT_EQ(1u, lastReason);
}

TEST(Modules, AreRegisteredOnce) {
  tQuiet const quiet;
  tRecord record;
  EXPECT_EQ(0, record.open());
  EXPECT_EQ(kStatusBadArgument, record.open());
  EXPECT_EQ(1u, calls);
  EXPECT_EQ(0, record.close());
  EXPECT_EQ(kStatusBadArgument, record.close());
  EXPECT_EQ(2u, calls);
}

TEST(Modules, MayBeRegisteredAgain) {
  tRecord record;
  for (u32 round = 0; round < 3; ++round) {
    EXPECT_EQ(0, record.open());
    EXPECT_EQ(0, record.close());
  }
  EXPECT_EQ(6u, calls);
}

TEST(Modules, AreSeveralAtATime) {
  tRecord records[3];
  for (tRecord& record : records) EXPECT_EQ(0, record.open());
  EXPECT_EQ(0, records[1].close());
  EXPECT_EQ(kStatusBadArgument, records[1].close());
  EXPECT_EQ(0, records[2].close());
  EXPECT_EQ(0, records[0].close());
  EXPECT_EQ(6u, calls);
}

TEST(Modules, WithAFailingEntryAreNotRegistered) {
  tQuiet const quiet;
  tRecord record;
  answer = -12345;
  EXPECT_EQ(-12345, record.open());
  EXPECT_EQ(1u, calls);
  EXPECT_EQ(kStatusBadArgument, record.close());
  answer = 0;
  EXPECT_EQ(0, record.open());
  EXPECT_EQ(0, record.close());
}

TEST(Modules, AreUnregisteredWhateverTheEntrySays) {
  tQuiet const quiet;
  tRecord record;
  EXPECT_EQ(0, record.open());
  answer = -5;
  EXPECT_EQ(-5, record.close());
  EXPECT_EQ(kStatusBadArgument, record.close());
  EXPECT_EQ(2u, calls);
}

TEST(Modules, AWarningOfTheEntryIsNoFailure) {
  tRecord record;
  answer = 5;
  EXPECT_EQ(0, record.open());
  EXPECT_EQ(0, record.close());
}

TEST(Modules, NeedTheirWholeRecord) {
  tRecord record;
  record.info.package = nullptr;
  EXPECT_EQ(kStatusBadArgument, record.open());
  record.info = {&package, nullptr, &moduleEntry, 0};
  EXPECT_EQ(kStatusBadArgument, record.open());
  record.info = {&package, "record", nullptr, 0};
  EXPECT_EQ(kStatusBadArgument, record.open());
  EXPECT_EQ(0u, calls);
}

TEST(Modules, AnEarlierErrorIsKept) {
  tRecord record;
  EXPECT_EQ(-1, record.open(-1));
  EXPECT_EQ(0u, calls);
  EXPECT_EQ(0, record.open());
  EXPECT_EQ(-1, record.close(-1));
  EXPECT_EQ(2u, calls);
  EXPECT_EQ(kStatusBadArgument, record.close());
}

TEST(Modules, AnEarlierWarningIsLeftAlone) {
  tRecord record;
  EXPECT_EQ(3, record.open(3));
  EXPECT_EQ(3, record.close(3));
}
