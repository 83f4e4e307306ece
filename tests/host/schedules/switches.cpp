// Threads that turn switches of a stream, ask a limit, and write without a lock, in every order.

#include "oxdiagk/tLineLimit.h"
#include "oxdiagk/tVEXTraceDestination.h"
#include "schedules/tExplorer.h"
#include "schedules/tWatchedDestination.h"
#include "support/recordingDestination.h"
#include "trace/startedModules.h"

using nOXDIAG100::tLineLimit;
using nOXDIAG100::tTraceParts;
using nOXDIAG100::tVEXTraceDestination;

namespace {

struct tStream {
  tStream() = default;
  ~tStream() { trace.setDestination(tVEXTraceDestination::getInstance()); }
  tStream(tStream const&) = delete;
  tStream& operator=(tStream const&) = delete;

  tWatchedFate fate;
  tWatchedDestination destination{fate};
  tPrivateTrace trace{destination};
};

class tSwitchesOfTwo {
 public:
  static constexpr unsigned kThreads = 2;

  void run(unsigned thread) {
    thread == 0 ? stream.trace.enableTimeStamp() : stream.trace.setMinPrefixWidth(60);
  }
  void finish() {
    EXPECT_EQ(stream.trace.timeStampIsEnabled(), 1u);
    EXPECT_EQ(stream.trace.getMinPrefixWidth(), 60u);
  }

 private:
  tStream stream;
};

// What is told of the switch is what lines go by.
class tOneSwitch {
 public:
  static constexpr unsigned kThreads = 2;

  void run(unsigned thread) { stream.trace.setMinPrefixWidth(thread == 0 ? 40 : 50); }
  void finish() {
    u32 const width = stream.trace.getMinPrefixWidth();
    EXPECT_TRUE(width == 40 || width == 50) << width;
    writeLine(stream.trace, "x");
    EXPECT_EQ(stream.fate.pieces.back().find("x\n"), width + 1);  // behind a blank
  }

 private:
  tStream stream;
};

// What debuggers find is what lines go by.
class tOneMember {
 public:
  static constexpr unsigned kThreads = 2;

  ~tOneMember() { delete parts.filter; }

  void run(unsigned thread) { parts.setWidth(thread == 0 ? 40 : 50); }
  void finish() { EXPECT_EQ(parts.minPrefixWidth, parts.getShape().getWidth()); }

 private:
  tWatchedFate fate;
  tWatchedDestination destination{fate};
  tTraceParts parts{destination};
};

class tOnce {
 public:
  static constexpr unsigned kThreads = 2;

  void run(unsigned thread) {
    admitted[thread] = limit.admit(tLineLimit::kOnce, 1, leftOut[thread]);
  }
  void finish() { EXPECT_NE(admitted[0], admitted[1]); }

 private:
  tLineLimit limit;
  bool admitted[kThreads] = {};
  u32 leftOut[kThreads] = {};
};

class tOneASecond {
 public:
  static constexpr unsigned kThreads = 2;

  void run(unsigned thread) { admitted[thread] = limit.admitAt(0, 1, leftOut[thread]); }
  void finish() { EXPECT_NE(admitted[0], admitted[1]); }

 private:
  tLineLimit limit;
  bool admitted[kThreads] = {};
  u32 leftOut[kThreads] = {};
};

class tUnlockedWriters {
 public:
  static constexpr unsigned kThreads = 3;

  void run(unsigned) { stream.trace.put("x").endl(); }
  void finish() { EXPECT_FALSE(stream.fate.pieces.empty()); }

 private:
  tStream stream;
};

}  // namespace

TEST(SwitchSchedules, TwoSwitchesAreBothTurned) {
  explore<tSwitchesOfTwo>("switchesTwo", {2, 300});
}

TEST(SwitchSchedules, OneSwitchIsAsTheLastOneTurnedIt) {
  explore<tOneSwitch>("switchesOne", {2, 300});
}

TEST(SwitchSchedules, TheMemberIsAsTheLastOneTurnedTheSwitch) {
  explore<tOneMember>("switchesMember", {2, 300});
}

TEST(LimitSchedules, ALineIsShownOnce) {
  explore<tOnce>("limitOnce", {tReach::kExhaustive, 0});
}

TEST(LimitSchedules, ASecondHasItsLinesOnce) {
  explore<tOneASecond>("limitSecond", {tReach::kExhaustive, 0});
}

TEST(SwitchSchedules, UnlockedWritersTakePlacesOfTheirOwn) {
  explore<tUnlockedWriters>("slotUnlocked", {1, 300});
}
