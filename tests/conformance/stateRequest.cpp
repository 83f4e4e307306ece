// What the library says of itself to user mode.

#include "oxdiagk/stateRequest.h"

#include "conformance/harness.h"
#include "oxdiagk/tAssertConfiguration.h"
#include "oxdiagk/tFileTraceDestination.h"
#include "oxdiagk/tTrace.h"
#include "support/tunnelRecords.h"
#include "vexk/iLib.h"
#include "vexk/tSSVersion.h"

namespace {

using namespace nOXDIAG100;

constexpr u8 kUntouched = 0xA5;

struct tAsked {
  explicit tAsked(u32 size = sizeof(tStateAnswer)) {
    __builtin_memset(&answer, kUntouched, sizeof(answer));
    tStateRequest const request = {addressOf(&answer), size, 0};
    iLib::deliver(kStateName, sizeof(kStateName) - 1, addressOf(&request), status);
  }

  u8 byteAt(u32 index) const { return reinterpret_cast<u8 const*>(&answer)[index]; }

  tStateAnswer answer;
  i32 status = 0;
};

}  // namespace

TEST(StateRequest, HasItsName) {
  EXPECT_STREQ(kStateName, "nOXDIAG100://nState");
}

TEST(StateRequest, IsAnsweredWithTheVersionTwice) {
  tAsked const asked;
  EXPECT_EQ(asked.status, 0);
  EXPECT_EQ(asked.answer.size, sizeof(tStateAnswer));
  char version[tSSVersion::kMaxTextSize];
  tSSVersion(asked.answer.version).toString(version);
  size_t const length = __builtin_strlen(version);
  EXPECT_EQ(__builtin_memcmp(asked.answer.build, version, length), 0);
  EXPECT_EQ(asked.answer.build[length], ' ');
}

TEST(StateRequest, HasNothingBehindTheBuild) {
  tAsked const asked;
  size_t const length = __builtin_strlen(asked.answer.build);
  ASSERT_LT(length, size_t{tStateAnswer::kBuildSize});
  for (size_t index = length; index != tStateAnswer::kBuildSize; ++index) {
    EXPECT_EQ(asked.answer.build[index], '\0');
  }
}

TEST(StateRequest, CountsWhatIsSavedOfEachObject) {
  tAsked const before;
  tTrace::getInstance().pushConfiguration();
  tTrace::getInstance().pushConfiguration();
  tAssertConfiguration::getInstance().pushConfiguration();
  tAsked const saved;
  EXPECT_EQ(saved.answer.savedTrace, before.answer.savedTrace + 2);
  EXPECT_EQ(saved.answer.savedAssert, before.answer.savedAssert + 1);
  tTrace::getInstance().popConfiguration();
  tTrace::getInstance().popConfiguration();
  tAssertConfiguration::getInstance().popConfiguration();
  tAsked const after;
  EXPECT_EQ(after.answer.savedTrace, before.answer.savedTrace);
  EXPECT_EQ(after.answer.savedAssert, before.answer.savedAssert);
}

TEST(StateRequest, TellsHowManyTextsTheFilesLost) {
  EXPECT_EQ(tAsked().answer.lostFileTexts, tFileTraceDestination::countLostTexts());
}

TEST(StateRequest, WritesNoMoreThanIsAskedFor) {
  u32 const sizes[] = {0, 1, 4, 15, 16, 128, 135};
  for (u32 const size : sizes) {
    tAsked const asked(size);
    EXPECT_EQ(asked.byteAt(0), size != 0 ? sizeof(tStateAnswer) : kUntouched);
    EXPECT_EQ(asked.byteAt(size), kUntouched);
  }
}

TEST(StateRequest, WritesNoMoreThanItHas) {
  struct {
    tStateAnswer answer;
    u8 behind;
  } room = {{}, kUntouched};
  tStateRequest const request = {addressOf(&room), sizeof(room), 0};
  i32 status = 0;
  iLib::deliver(kStateName, sizeof(kStateName) - 1, addressOf(&request), status);
  EXPECT_EQ(room.answer.size, sizeof(tStateAnswer));
  EXPECT_EQ(room.behind, kUntouched);
}

TEST(StateRequest, AddressesThatAreNoneEndIt) {
  i32 status = 0;
  iLib::deliver(kStateName, sizeof(kStateName) - 1, 16, status);
  tStateRequest const request = {16, sizeof(tStateAnswer), 0};
  iLib::deliver(kStateName, sizeof(kStateName) - 1, addressOf(&request), status);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(tAsked().answer.size, sizeof(tStateAnswer));
}
