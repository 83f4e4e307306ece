// The formatter by itself: what it returns, and what it leaves in buffers of every size.

#include "trace/tTraceFormatter.h"

#include "conformance/harness.h"
#include "oxdiagk/tTrace.h"

using nOXDIAG100::tTrace;
using nOXDIAG100::tTraceFormatter;

namespace {

constexpr u32 kLimit = tTrace::kMaxTraceLine;
constexpr u32 kLargestSize = kLimit + 64;
constexpr char kUntouched = '\x5A';

char buffer[kLargestSize];

i32 formatInto(char* to, u32 size, char const* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  i32 const length = tTraceFormatter::format(to, size, format, arguments);
  va_end(arguments);
  return length;
}

// Formats into the first `size` bytes of the buffer.
template <class... tArguments>
i32 formatBytes(u32 size, char const* format, tArguments... arguments) {
  __builtin_memset(buffer, kUntouched, sizeof(buffer));
  return formatInto(buffer, size, format, arguments...);
}

bool isUntouchedFrom(u32 offset) {
  for (; offset < kLargestSize; ++offset) {
    if (buffer[offset] != kUntouched) return false;
  }
  return true;
}

}  // namespace

TEST(TraceFormatter, TheLengthIsReturnedWithoutTheTerminator) {
  EXPECT_EQ(formatBytes(kLimit, "slot %d", 12), i32{7});
  EXPECT_STREQ(buffer, "slot 12");
}

TEST(TraceFormatter, EmptyFormatGivesEmptyText) {
  EXPECT_EQ(formatBytes(kLimit, ""), i32{0});
  EXPECT_STREQ(buffer, "");
}

TEST(TraceFormatter, NullFormatGivesEmptyText) {
  EXPECT_EQ(formatBytes(kLimit, nullptr), i32{0});
  EXPECT_STREQ(buffer, "");
}

TEST(TraceFormatter, NothingFitsIntoNoBytes) {
  EXPECT_EQ(formatBytes(0, "%d", 5), i32{-1});
  EXPECT_EQ(formatBytes(0, ""), i32{-1});
  EXPECT_TRUE(isUntouchedFrom(0));
}

TEST(TraceFormatter, NothingFitsIntoANullBuffer) {
  EXPECT_EQ(formatInto(nullptr, 0, "%d", 5), i32{-1});
  EXPECT_EQ(formatInto(nullptr, 100, "%d", 5), i32{-1});
}

TEST(TraceFormatter, OneByteHoldsTheEmptyText) {
  EXPECT_EQ(formatBytes(1, ""), i32{0});
  EXPECT_STREQ(buffer, "");
  EXPECT_EQ(formatBytes(1, "%d", 5), i32{-1});
  EXPECT_STREQ(buffer, "");
  EXPECT_TRUE(isUntouchedFrom(1));
}

TEST(TraceFormatter, TextOfTheSizeLessOneFits) {
  EXPECT_EQ(formatBytes(6, "%d", 12345), i32{5});
  EXPECT_STREQ(buffer, "12345");
  EXPECT_TRUE(isUntouchedFrom(6));
}

TEST(TraceFormatter, TextOfTheSizeDoesNotFit) {
  EXPECT_EQ(formatBytes(5, "%d", 12345), i32{-1});
  EXPECT_STREQ(buffer, "1234");
  EXPECT_TRUE(isUntouchedFrom(5));
}

TEST(TraceFormatter, TextBelowTheSizeLessOneFits) {
  EXPECT_EQ(formatBytes(7, "%d", 12345), i32{5});
  EXPECT_STREQ(buffer, "12345");
}

TEST(TraceFormatter, EveryPartMayBeCut) {
  for (u32 size = 1; size <= 60; ++size) {
    char const whole[] = "ab  -00012|xyz  |0x1f|%|wide|<<'f' not supported>>";
    char wanted[sizeof(whole)];
    __builtin_memcpy(wanted, whole, sizeof(whole));
    if (size < sizeof(whole)) wanted[size - 1] = 0;
    i32 const length = formatBytes(size, "ab%8.5d|%-5s|%#x|%%|%ls|%f", -12, "xyz", 31, L"wide");
    EXPECT_EQ(length, size < sizeof(whole) ? i32{-1} : static_cast<i32>(sizeof(whole) - 1));
    EXPECT_STREQ(buffer, wanted);
    EXPECT_TRUE(isUntouchedFrom(size));
  }
}

TEST(TraceFormatter, ItStopsAtTheLimitWhateverTheSize) {
  u32 const sizes[] = {kLimit, kLimit + 1, kLargestSize, 0x80000000, 0xFFFFFFFF};
  for (u32 const size : sizes) {
    EXPECT_EQ(formatBytes(size, "%1023d", 5), i32{1023});
    EXPECT_TRUE(isUntouchedFrom(kLimit));
    EXPECT_EQ(formatBytes(size, "%1024d", 5), i32{-1});
    EXPECT_EQ(buffer[kLimit - 1], '\0');
    EXPECT_TRUE(isUntouchedFrom(kLimit));
  }
}

TEST(TraceFormatter, NulCharactersOfWideTextAreWritten) {
  EXPECT_EQ(formatBytes(kLimit, "%ls-%d",
                        L"a\x0100"
                        L"b",
                        5),
            i32{5});
  EXPECT_EQ(__builtin_memcmp(buffer, "a\0b-5", 6), 0);
}

TEST(TraceFormatter, IncompleteAndInvalidConversionsAreNoFailure) {
  EXPECT_EQ(formatBytes(kLimit, "ab%"), i32{2});
  EXPECT_EQ(formatBytes(kLimit, "ab%-5"), i32{2});
  EXPECT_EQ(formatBytes(kLimit, "%q"), i32{36});
}

TEST(TraceFormatter, NothingIsReadOnceTheTextIsCut) {
  EXPECT_EQ(formatBytes(4, "abcd%s", reinterpret_cast<char const*>(1)), i32{-1});
  EXPECT_STREQ(buffer, "abc");
}

TEST(TraceFormatter, TheCallersArgumentsAreLeftAlone) {
  auto const formatTwice = [](char const* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    tTraceFormatter::format(buffer, sizeof(buffer), format, arguments);
    i32 const next = va_arg(arguments, int);
    va_end(arguments);
    return next;
  };
  EXPECT_EQ(formatTwice("%d %d", 1, 2), i32{1});
}
