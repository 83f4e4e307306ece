// A status as text.

#include "conformance/harness.h"
#include "support/callerCodes.h"
#include "support/heapRecord.h"
#include "support/statusOrigin.h"
#include "support/tTestDescription.h"

using nOXDIAG100::tStatus2;

namespace {

constexpr u32 kRoom = 700;
constexpr char kFill = '#';

constexpr char kEmptyDetail[] =
    "\ntStatus2 Contents:"
    "\n\tError Code = -61007"
    "\n\tComponent Name = slotbus"
    "\n\tFile Name = rack.cpp"
    "\n\tLine Number = 4294967295"
    "\n\tAddress of Status Description = 0x0"
    "\n\tStack Trace ="
    "\n\t\t0x0\n\t\t0x0\n\t\t0x0\n\t\t0x0\n\t\t0x0\n\t\t0x0\n\t\t0x0\n\t\t0x0\n\t\t0x0\n\t\t0x0";

struct tText {
  char buffer[kRoom];

  tText(tStatus2 const& status, u32 size) {
    for (char& character : buffer) character = kFill;
    status.toString(buffer, size);
  }

  bool isUntouchedFrom(u32 index) const {
    for (; index != kRoom; ++index) {
      if (buffer[index] != kFill) return false;
    }
    return true;
  }
};

// Whether a text cut to `size` bytes is the whole one up to there, with its two terminators, and
// nothing behind the buffer was written.
bool isCutRight(tStatus2 const& status, char const* whole, u32 size) {
  tText const text(status, size);
  u32 const wholeLength = static_cast<u32>(__builtin_strlen(whole));
  u32 const length = wholeLength < size - 1 ? wholeLength : size - 1;
  return __builtin_memcmp(text.buffer, whole, length) == 0 && text.buffer[length] == '\0' &&
         text.buffer[size - 1] == '\0' && text.isUntouchedFrom(size);
}

// The number of sizes from 1 to the whole text and one byte more at which the cut is wrong.
u32 countWrongCuts(tStatus2 const& status, char const* whole) {
  u32 wrong = 0;
  u32 const last = static_cast<u32>(__builtin_strlen(whole)) + 2;
  for (u32 size = 1; size <= last; ++size) wrong += isCutRight(status, whole, size) ? 0 : 1;
  return wrong;
}

// Sets the line of a status' record, and its addresses.
u8* recordOf(tStatus2 const& status) {
  static constinit u8 none[240] = {};  // of a status without detail
  u8* record = nullptr;
  __builtin_memcpy(&record, &status, sizeof record);
  return record == nullptr ? none : record;
}
void setLine(tStatus2 const& status, u32 line) {
  __builtin_memcpy(recordOf(status) + 140, &line, sizeof line);
}
void setAddress(tStatus2 const& status, u32 index, u64 address) {
  __builtin_memcpy(recordOf(status) + 144 + u64{8} * index, &address, sizeof address);
}

// A failure with a known text.
class tKnownFailure {
 public:
  tKnownFailure() {
    OXDIAG_SET_STATUS_WITHOUT_STACK_TRACE(status, kError);
    setLine(status, 0xFFFFFFFF);
  }

  tOrigin origin{"slotbus", "rack.cpp"};
  tStatus2 status;
};

bool contains(char const* text, char const* part) {
  size_t const length = __builtin_strlen(part);
  for (size_t left = __builtin_strlen(text); left >= length; --left, ++text) {
    if (__builtin_memcmp(text, part, length) == 0) return true;
  }
  return false;
}

}  // namespace

TEST(StatusText, WithoutDetailEndsBehindTheCode) {
  tText const text(tStatus2(-50352), kRoom);
  EXPECT_STREQ(text.buffer, "\ntStatus2 Contents:\n\tError Code = -50352\n");
}

TEST(StatusText, ShowsSuccessAndWarnings) {
  EXPECT_STREQ(tText(tStatus2(), kRoom).buffer, "\ntStatus2 Contents:\n\tError Code = 0\n");
  EXPECT_STREQ(tText(tStatus2(88800), kRoom).buffer,
               "\ntStatus2 Contents:\n\tError Code = 88800\n");
}

TEST(StatusText, ShowsTheExtremesOfTheCode) {
  EXPECT_STREQ(tText(tStatus2(-2147483647 - 1), kRoom).buffer,
               "\ntStatus2 Contents:\n\tError Code = -2147483648\n");
  EXPECT_STREQ(tText(tStatus2(2147483647), kRoom).buffer,
               "\ntStatus2 Contents:\n\tError Code = 2147483647\n");
}

TEST(StatusText, WithDetailShowsItAllAndEndsWithoutNewline) {
  tKnownFailure const failure;
  EXPECT_STREQ(tText(failure.status, kRoom).buffer, kEmptyDetail);
}

TEST(StatusText, ShowsAddressesInFullWithoutLeadingZeros) {
  tKnownFailure const failure;
  setAddress(failure.status, 0, 0xFFFFF80012ABCDEF);
  setAddress(failure.status, 4, 0x100000000);
  setAddress(failure.status, 9, 0xFFFFFFFF);
  tText const text(failure.status, kRoom);
  EXPECT_TRUE(contains(text.buffer, "Stack Trace =\n\t\t0xFFFFF80012ABCDEF\n\t\t0x0\n"));
  EXPECT_TRUE(contains(text.buffer, "\n\t\t0x0\n\t\t0x100000000\n\t\t0x0\n"));
  EXPECT_STREQ(text.buffer + __builtin_strlen(text.buffer) - 10, "0xFFFFFFFF");
}

TEST(StatusText, ShowsTheCallStackThatTheStatusHas) {
  tOrigin const origin("slotbus", "rack.cpp");
  tStatus2 status;
  OXDIAG_SET_STATUS(status, kError);
  u64 addresses[tStatus2::kStackTraceLength];
  status.getStackTrace(addresses);
  tStatus2 const copy(status);
  for (u32 i = 0; i != tStatus2::kStackTraceLength; ++i) setAddress(status, i, 0);
  setLine(status, 0xFFFFFFFF);
  EXPECT_STREQ(tText(status, kRoom).buffer, kEmptyDetail);
  EXPECT_NE(addresses[0], u64{0});
}

TEST(StatusText, ShowsTheAddressOfTheDescription) {
  tKnownFailure failure;
  tTestDescription const description(42);
  failure.status.setDescription(description);
  tText const text(failure.status, kRoom);
  EXPECT_FALSE(contains(text.buffer, "Address of Status Description = 0x0\n"));
  EXPECT_TRUE(contains(text.buffer, "Address of Status Description = 0x"));
}

TEST(StatusText, EndsWithTheEmptyTextOfADescription) {
  tKnownFailure failure;
  tTestDescription const description(42);
  failure.status.setDescription(description);
  tText const text(failure.status, kRoom);
  EXPECT_STREQ(text.buffer + __builtin_strlen(text.buffer) - 7, "\t\t0x0\n\t");
}

TEST(StatusText, EndsWithTheTextOfADescription) {
  tKnownFailure failure;
  tTalkingDescription const description(5);
  failure.status.setDescription(description);
  tText const text(failure.status, kRoom);
  EXPECT_STREQ(text.buffer + __builtin_strlen(text.buffer) - 12, "\t\t0x0\n\tabcde");
}

TEST(StatusText, GivesTheDescriptionTheRestOfTheBuffer) {
  tKnownFailure failure;
  tTalkingDescription const description(1000);
  failure.status.setDescription(description);
  tText const text(failure.status, 600);
  u32 const before = 600 - tTalkingDescription::lastSize;
  EXPECT_EQ(__builtin_memcmp(text.buffer + before - 2, "\n\tabc", 5), 0);
  EXPECT_EQ(__builtin_strlen(text.buffer), size_t{599});
  EXPECT_TRUE(text.isUntouchedFrom(600));
}

TEST(StatusText, IsTerminatedBehindADescriptionThatIsNot) {
  tKnownFailure failure;
  tTalkingDescription const description(1000);
  failure.status.setDescription(description);
  tTalkingDescription::isCareless = true;
  tText const text(failure.status, 600);
  tTalkingDescription::isCareless = false;
  EXPECT_EQ(text.buffer[599], '\0');
  EXPECT_TRUE(text.isUntouchedFrom(600));
}

TEST(StatusText, DoesNotAskADescriptionForWhichThereIsNoRoom) {
  tKnownFailure failure;
  tTalkingDescription const description(5);
  failure.status.setDescription(description);
  u32 const length = static_cast<u32>(__builtin_strlen(tText(failure.status, kRoom).buffer)) - 5;
  tTalkingDescription::lastSize = 0;
  tText const withoutRoom(failure.status, length - 1);
  EXPECT_EQ(tTalkingDescription::lastSize, u32{0});
  tText const withRoom(failure.status, length + 2);
  EXPECT_EQ(tTalkingDescription::lastSize, u32{2});
}

TEST(StatusText, IsCutAtEveryLengthWithoutDetail) {
  EXPECT_EQ(countWrongCuts(tStatus2(-50352), "\ntStatus2 Contents:\n\tError Code = -50352\n"),
            u32{0});
}

TEST(StatusText, IsCutAtEveryLengthWithDetail) {
  tKnownFailure const failure;
  EXPECT_EQ(countWrongCuts(failure.status, kEmptyDetail), u32{0});
}

TEST(StatusText, IsCutAtEveryLengthWithDescription) {
  tKnownFailure failure;
  tTalkingDescription const description(20);
  failure.status.setDescription(description);
  tText const whole(failure.status, kRoom);
  EXPECT_EQ(countWrongCuts(failure.status, whole.buffer), u32{0});
}

TEST(StatusText, InOneByteIsEmpty) {
  tText const text(tStatus2(kError), 1);
  EXPECT_STREQ(text.buffer, "");
  EXPECT_TRUE(text.isUntouchedFrom(1));
}

TEST(StatusText, InTenBytesIsItsFirstNineCharacters) {
  EXPECT_STREQ(tText(tStatus2(kError), 10).buffer, "\ntStatus2");
}

TEST(StatusText, InNoBytesIsNothing) {
  EXPECT_TRUE(tText(tStatus2(kError), 0).isUntouchedFrom(0));
}

TEST(StatusText, IntoNoBufferIsNothing) {
  tKnownFailure const failure;
  failure.status.toString(nullptr, 100);
  EXPECT_EQ(failure.status.getCode(), kError);
}

TEST(StatusText, LeavesTheLastByteOfALargeBufferTerminated) {
  tText const text(tStatus2(kError), kRoom);
  EXPECT_EQ(text.buffer[kRoom - 1], '\0');
}

TEST(StatusText, OfTheLargestDetailFitsIntoTheRoomPromised) {
  tLongText<24> const component;
  tLongText<101> const file;
  tOrigin const origin(component.get(), file.get());
  tTestDescription const description(42);
  tStatus2 status;
  OXDIAG_SET_STATUS_WITH_DESCRIPTION(status, -2147483647 - 1, description);
  setLine(status, 0xFFFFFFFF);
  for (u32 i = 0; i != tStatus2::kStackTraceLength; ++i) setAddress(status, i, ~u64{0});
  tText const text(status, tStatus2::kMaxTextSize);
  tText const whole(status, kRoom);
  EXPECT_STREQ(text.buffer, whole.buffer);
}
