#include "oxdiagk/tVEXTraceDestination.h"

#include "conformance/harness.h"

namespace {

using nOXDIAG100::iTraceDestination;
using nOXDIAG100::tVEXTraceDestination;

constexpr char kSettings[] = " --destination vex";
constexpr u32 kRequired = sizeof(kSettings);

tVEXTraceDestination& destination() {
  return tVEXTraceDestination::getInstance();
}

// inquire with every size from 0 to `kRequired` + 2 into a buffer full of '#'.
struct tInquiry {
  char buffer[kRequired + 4];
  unsigned int required = 0;
  char* end = nullptr;

  explicit tInquiry(unsigned int size) {
    __builtin_memset(buffer, '#', sizeof(buffer));
    end = destination().inquire(buffer, size, &required);
  }
};

}  // namespace

TEST(DebuggerPrintDestination, ThereIsOneInstance) {
  EXPECT_TRUE(&tVEXTraceDestination::getInstance() == &tVEXTraceDestination::getInstance());
}

TEST(DebuggerPrintDestination, SettingsAreMeasuredWithoutABuffer) {
  unsigned int required = 0;
  EXPECT_TRUE(destination().inquire(nullptr, 0, &required) == nullptr);
  EXPECT_EQ(required, 19u);
}

TEST(DebuggerPrintDestination, NullBufferWithASizeIsOnlyMeasured) {
  unsigned int required = 0;
  EXPECT_TRUE(destination().inquire(nullptr, 40, &required) == nullptr);
  EXPECT_EQ(required, 19u);
}

TEST(DebuggerPrintDestination, FiveBytesHoldTheBeginningOfTheSettings) {
  tInquiry const inquiry(5);
  EXPECT_STREQ(inquiry.buffer, " --d");
  EXPECT_EQ(inquiry.required, 19u);
}

TEST(DebuggerPrintDestination, BufferOfSizeZeroIsNotTouched) {
  tInquiry const inquiry(0);
  EXPECT_EQ(inquiry.buffer[0], '#');
  EXPECT_TRUE(inquiry.end == inquiry.buffer);
  EXPECT_EQ(inquiry.required, 19u);
}

TEST(DebuggerPrintDestination, SettingsAreCutAtEverySizeAndTerminated) {
  for (unsigned int size = 1; size < kRequired; ++size) {
    tInquiry const inquiry(size);
    EXPECT_EQ(__builtin_strlen(inquiry.buffer), size_t{size - 1});
    EXPECT_EQ(__builtin_memcmp(inquiry.buffer, kSettings, size - 1), 0);
    EXPECT_EQ(inquiry.buffer[size], '#');
    EXPECT_TRUE(inquiry.end == inquiry.buffer + size);
    EXPECT_EQ(inquiry.required, 19u);
  }
}

TEST(DebuggerPrintDestination, WholeSettingsEndAtTheirTerminator) {
  tInquiry const inquiry(kRequired);
  EXPECT_STREQ(inquiry.buffer, kSettings);
  EXPECT_TRUE(inquiry.end == inquiry.buffer + kRequired - 1);
}

TEST(DebuggerPrintDestination, LastByteOfALargerBufferIsTerminatedToo) {
  tInquiry const inquiry(kRequired + 2);
  EXPECT_STREQ(inquiry.buffer, kSettings);
  EXPECT_EQ(inquiry.buffer[kRequired], '#');
  EXPECT_EQ(inquiry.buffer[kRequired + 1], '\0');
  EXPECT_TRUE(inquiry.end == inquiry.buffer + kRequired - 1);
}

TEST(DebuggerPrintDestination, RequiredSizeNeedNotBeAskedFor) {
  char buffer[32];
  destination().inquire(buffer, sizeof(buffer), nullptr);
  EXPECT_STREQ(buffer, kSettings);
}

TEST(DebuggerPrintDestination, OpenSucceedsAsOftenAsCalled) {
  EXPECT_EQ(destination().open(), u32{1});
  EXPECT_EQ(destination().open(), u32{1});
  destination().close();
  destination().close();
  EXPECT_EQ(destination().open(), u32{1});
}

TEST(DebuggerPrintDestination, DescriptionIsTheSameForEveryCall) {
  EXPECT_STREQ(destination().getDescription(), "VEX print to debugger");
  EXPECT_STREQ(destination().getDescription(), "VEX print to debugger");
}

TEST(DebuggerPrintDestination, OptionWordsChangeNothing) {
  char word[] = "9600";
  char* words[] = {word};
  destination().configure(1, words);
  destination().configure(0, nullptr);
  destination().configure(1, nullptr);
  char buffer[32];
  destination().inquire(buffer, sizeof(buffer), nullptr);
  EXPECT_STREQ(buffer, kSettings);
}

TEST(DebuggerPrintDestination, PutReturnsTheDestination) {
  iTraceDestination& base = destination();
  EXPECT_TRUE(&base.put("debugger print test\n") == &base);
  EXPECT_TRUE(&base.put("debugger print test\n", 0) == &base);
}
