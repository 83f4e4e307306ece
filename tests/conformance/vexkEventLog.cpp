#include "conformance/harness.h"
#include "vexk/eventLog.h"

namespace {

constexpr char kComponent[] = "tests";
constexpr char kPlace[] = "place - ";

// Nothing that these tests log is printed. What comes after is what they have logged.
class tLog {
 public:
  tLog() : levelBefore(vexPrintEvents(kVexEventNever)) {
    while (vexReadEvent(next, event)) next = event.number + 1;
  }
  ~tLog() { vexPrintEvents(levelBefore); }
  tLog(tLog const&) = delete;
  tLog& operator=(tLog const&) = delete;

  // The text of the next event; empty when there is none.
  char const* read() {
    if (!vexReadEvent(next, event)) return "";
    next = event.number + 1;
    return event.text;
  }

  tVexEvent event = {};
  u64 next = 1;

 private:
  u32 levelBefore;
};

i32 entry(u32 /*reason*/) {
  return 0;
}

bool startsWith(char const* text, char const* start) {
  while (*start != '\0' && *text == *start) ++text, ++start;
  return *start == '\0';
}

// A text of so many characters.
struct tLongText {
  explicit tLongText(u32 length) {
    __builtin_memset(text, 'x', sizeof(text));
    text[length] = '\0';
  }
  char text[600];
};

}  // namespace

TEST(EventLog, KeepsComponentPlaceTextAndLevel) {
  tLog log;
  _vexLogEvent(kComponent, kPlace, 10, "%s has %d of %u", "it", -5, 7u);
  EXPECT_STREQ("tests place - it has -5 of 7", log.read());
  EXPECT_EQ(10u, log.event.level);
  EXPECT_STREQ("", log.read());
}

TEST(EventLog, LeavesOutOneNewlineAtTheEnd) {
  tLog log;
  _vexLogEvent(kComponent, kPlace, 0, "one\n");
  _vexLogEvent(kComponent, kPlace, 0, "two\n\n");
  EXPECT_STREQ("tests place - one", log.read());
  EXPECT_STREQ("tests place - two\n", log.read());
}

TEST(EventLog, TakesNullsForEmptyTexts) {
  tLog log;
  _vexLogEvent(nullptr, nullptr, 0, nullptr);
  EXPECT_STREQ(" ", log.read());
  pkgModulePackageEventLog(0, nullptr, nullptr, nullptr, nullptr);
  EXPECT_TRUE(startsWith(log.read(), " load: ,  at "));
}

TEST(EventLog, TellsTheTurnsOfAModulesLife) {
  tLog log;
  u32 const reasons[] = {0, 1, 2, 3, 4, 0xFFFFFFFF};
  for (u32 const reason : reasons) {
    pkgModulePackageEventLog(reason, "some.dll", "1.0.0f7 today", "ssMain", &entry);
  }
  EXPECT_TRUE(startsWith(log.read(), "some.dll load: 1.0.0f7 today, ssMain at "));
  EXPECT_EQ(kVexEventLife, log.event.level);
  EXPECT_TRUE(startsWith(log.read(), "some.dll unload: 1.0.0f7 today, ssMain at "));
  EXPECT_TRUE(startsWith(log.read(), "some.dll open: 1.0.0f7 today, ssMain at "));
  EXPECT_TRUE(startsWith(log.read(), "some.dll close: 1.0.0f7 today, ssMain at "));
  EXPECT_TRUE(startsWith(log.read(), "some.dll reason 4: 1.0.0f7 today, ssMain at "));
  EXPECT_TRUE(startsWith(log.read(), "some.dll reason 4294967295: 1.0.0f7 today, ssMain at "));
  EXPECT_STREQ("", log.read());
}

TEST(EventLog, CutsWhatIsLongerThanALine) {
  constexpr u32 kLongest = kVexEventTextSize - 1;
  for (u32 length = kLongest - 1; length <= kLongest + 1; ++length) {
    tLog log;
    u32 const before = static_cast<u32>(sizeof(kComponent) + sizeof(kPlace) - 1);
    tLongText const rest(length - before);
    _vexLogEvent(kComponent, kPlace, 0, "%s", rest.text);
    EXPECT_EQ(length < kLongest ? length : kLongest, __builtin_strlen(log.read()));
  }
  tLog log;
  tLongText const longest(599);
  _vexLogEvent(longest.text, longest.text, 0, "%s", longest.text);
  EXPECT_EQ(kLongest, __builtin_strlen(log.read()));
}

TEST(EventLog, KeepsTheLastSixtyFour) {
  tLog log;
  u64 const first = log.next;
  for (u32 index = 0; index < kVexEventCount + 3; ++index) {
    _vexLogEvent(kComponent, kPlace, 0, "%u", static_cast<unsigned>(index));
  }
  EXPECT_STREQ("tests place - 3", log.read());
  EXPECT_EQ(first + 3, log.event.number);
  for (u32 index = 4; index < kVexEventCount + 3; ++index) {
    EXPECT_TRUE(startsWith(log.read(), "tests place - "));
    EXPECT_EQ(first + index, log.event.number);
  }
  EXPECT_STREQ("", log.read());
}

TEST(EventLog, NumbersAndTimesGrow) {
  tLog log;
  _vexLogEvent(kComponent, kPlace, 0, "a");
  _vexLogEvent(kComponent, kPlace, 0, "b");
  log.read();
  tVexEvent const before = log.event;
  log.read();
  EXPECT_EQ(before.number + 1, log.event.number);
  EXPECT_GE(log.event.time, before.time);
  EXPECT_GT(before.time, i64{0x01D0000000000000});  // after 2014
}

TEST(EventLog, HasNothingBeyondTheLast) {
  tLog log;
  tVexEvent event;
  EXPECT_FALSE(vexReadEvent(log.next, event));
  EXPECT_FALSE(vexReadEvent(~u64{0}, event));
  EXPECT_EQ(kVexEventNever, vexPrintEvents(kVexEventNever));
}
