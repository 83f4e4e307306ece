// Switches of destinations within: who is kept out meanwhile, whom they wait for, and what becomes
// of a destination that goes, moves on or does not open.

#include <memory>

#include "capturedPrint.h"
#include "newEvents.h"
#include "ntoshost/faults.h"
#include "ntoshost/time.h"
#include "ownParts.h"
#include "oxdiagk/tVEXTraceDestination.h"
#include "startedModules.h"
#include "trace/destinationSwitches.h"
#include "trace/mayEnd.h"
#include "trace/tDestinationSwitch.h"
#include "trace/tFormerSettings.h"
#include "trace/tPatience.h"
#include "trace/tStreamHold.h"
#include "vexk/statusCodes.h"

namespace {

using namespace nOXDIAG100;

iTraceDestination& debugger() {
  return tVEXTraceDestination::getInstance();
}

char option[] = "--kept";
char* words[] = {option};

bool configureKept(tKeptLines& kept) {
  return configureDestination(kept, 1, words);
}

// Two streams, each at a place of its own, and a place that is spare.
class SwitchParts : public testing::Test {
 protected:
  SwitchParts() { EXPECT_TRUE(tStreamLock::acquire()); }
  ~SwitchParts() override { tStreamLock::release(); }

  // So that both use the place of the other one.
  void share() { own.slot.install(next); }

  int countAtDebugger(char const* wanted) const {
    int count = 0;
    for (std::string const& piece : print.prints) count += piece.find(wanted) == 0 ? 1 : 0;
    return count;
  }

  tCapturedPrint print;
  tNewEvents events;
  tCallingKept former;
  tCallingKept next;
  tCallingKept spare;
  tOwnParts own{former};
  tOwnParts other{next};
};

// Nobody waits: what does not come out at once is given up.
class GivenUp : public SwitchParts {
 protected:
  GivenUp() { tPatience::setExhausted(true); }
  ~GivenUp() override { other.mutexObject = nullptr; }

  // Another thread has a line of the other stream.
  void holdOther() {
    held.status = kStatusSyncTimeout;
    other.mutexObject = &held;
    other.turn(tLineShape::kMutex, true);
  }

  bool isLogged(char const* wanted) const {
    return events.read().find(wanted) != std::string::npos;
  }

  tPatienceScope patienceOfAll;
  tToldLock held;
};

constexpr char kNotSwitched[] =
    "the trace destination is not switched: thread 0xFFFFFFF1 is still within its put after 10 s";

}  // namespace

TEST_F(SwitchParts, TextsOfOtherThreadsStayOutWhileADestinationIsConfigured) {
  tOwnParts third(spare);
  tOwnParts second(next);
  next.onConfigure = [&] {
    other.sendElsewhere("lost");
    second.sendElsewhere("lost");
    third.sendElsewhere("elsewhere");
  };
  EXPECT_TRUE(configureKept(next));
  other.sendElsewhere("later");
  EXPECT_EQ(next.pieces, std::vector<std::string>{"later"});
  EXPECT_EQ(next.words, std::vector<std::string>{"--kept"});
  EXPECT_EQ(spare.pieces, std::vector<std::string>{"elsewhere"});
}

TEST_F(SwitchParts, TextsOfOtherThreadsStayOutWhileASharedDestinationIsOpenedAnew) {
  share();
  next.onClose = [&] {
    own.sendElsewhere("lost");
    other.sendElsewhere("lost");
  };
  EXPECT_EQ(switchTo(own, next, false), &next);
  EXPECT_FALSE(next.has("lost"));
  own.sendElsewhere("one ");
  other.sendElsewhere("two");
  EXPECT_TRUE(next.has("one two"));
}

TEST_F(SwitchParts, FiveHoldsWithinEachOtherAreTooDeep) {
  tStreamHold const holds[4];
  for (tStreamHold const& hold : holds) EXPECT_FALSE(hold.isTooDeep());
  EXPECT_FALSE(configureKept(next));
  EXPECT_EQ(switchTo(own, next, false), &former);
  EXPECT_EQ(next.events, "");
}

TEST_F(GivenUp, ADestinationIsNotConfiguredBesideALine) {
  holdOther();
  tOwnParts first(next);
  EXPECT_FALSE(configureKept(next));
  EXPECT_EQ(next.events, "");
  EXPECT_TRUE(isLogged("another thread is still within a line"));
}

TEST_F(GivenUp, ADestinationIsConfiguredBesideALineElsewhere) {
  holdOther();
  EXPECT_TRUE(configureKept(former));
  EXPECT_EQ(former.events, "configure ");
}

TEST_F(GivenUp, ADestinationIsNotConfiguredBesideAPut) {
  tTextOfAnother const text(other.slot, next);
  EXPECT_FALSE(configureKept(next));
  EXPECT_EQ(next.events, "");
  EXPECT_TRUE(isLogged(kNotSwitched));
}

TEST_F(GivenUp, AStreamIsNotSwitchedBesideAPut) {
  tTextOfAnother const text(own.slot, former);
  EXPECT_EQ(switchTo(own, next, false), &former);
  EXPECT_EQ(own.slot.get(), &former);
  EXPECT_TRUE(isLogged(kNotSwitched));
}

TEST_F(GivenUp, IsAFailureInTheEventLog) {
  tTextOfAnother const text(own.slot, former);
  switchTo(own, next, false);
  tVexEvent event;
  event.level = 0;
  for (u64 number = 1; vexReadEvent(number, event); number = event.number + 1) {
  }
  EXPECT_EQ(event.level, kVexEventFailure);
}

// A put that gets stuck while the line of the switch is written.
TEST_F(GivenUp, AStreamIsNotSwitchedBesideAPutThatCameLater) {
  std::unique_ptr<tTextOfAnother> text;
  former.onPut = [&](std::string const&) {
    text = std::make_unique<tTextOfAnother>(own.slot, former);
    former.onPut = nullptr;
  };
  EXPECT_EQ(switchTo(own, next, false), &former);
  EXPECT_EQ(own.slot.get(), &former);
  EXPECT_EQ(former.events, "");
}

TEST_F(GivenUp, AStreamThatEndsDoesNotSaySoAgain) {
  tTextOfAnother const text(own.slot, former);
  own.isEnding = true;
  EXPECT_EQ(switchTo(own, next, false), &former);
  EXPECT_FALSE(awaitTexts(own));
  EXPECT_EQ(events.read(), "");
}

TEST_F(SwitchParts, AStreamThatEndsSaysOnceWhomItHasWaitedFor) {
  ntoshost::setTimeRate(1'000);
  tTextOfAnother const text(own.slot, former);
  own.isEnding = true;
  EXPECT_EQ(switchTo(own, next, false), &former);
  EXPECT_NE(events.read().find(kNotSwitched), std::string::npos) << events.read();
  ntoshost::setTimeRate(1);
}

TEST_F(GivenUp, ADestinationThatIsOpenIsTakenBesideALineThere) {
  holdOther();
  EXPECT_EQ(switchTo(own, next, false), &former);
  EXPECT_EQ(own.slot.get(), &next);
  EXPECT_EQ(held.acquired, 0);
}

TEST_F(GivenUp, ADestinationThatIsOpenIsTakenBesideAPutThere) {
  tTextOfAnother const text(other.slot, next);
  EXPECT_EQ(switchTo(own, next, false), &former);
  EXPECT_EQ(own.slot.get(), &next);
}

TEST_F(GivenUp, ASharedDestinationIsNotOpenedAnewBesideAPutOfAnotherStream) {
  share();
  tTextOfAnother const text(other.slot, next);
  EXPECT_EQ(switchTo(own, next, false), &next);
  EXPECT_EQ(next.events, "");
  EXPECT_TRUE(isLogged(kNotSwitched));
}

TEST_F(GivenUp, ASharedDestinationIsOpenedAnewBesideAPutElsewhere) {
  share();
  tOwnParts third(spare);
  tTextOfAnother const text(third.slot, spare);
  EXPECT_EQ(switchTo(own, next, false), &next);
  EXPECT_EQ(next.events, "close open ");
}

TEST_F(GivenUp, AChangedDestinationIsNotTakenBesideAPutOfTheStream) {
  tTextOfAnother const text(own.slot, former);
  EXPECT_EQ(switchTo(own, next, true), &former);
  EXPECT_EQ(own.slot.get(), &former);
  EXPECT_EQ(next.events, "");
}

TEST_F(SwitchParts, AChangedDestinationIsClosedAndOpenedForAll) {
  EXPECT_EQ(switchTo(own, next, true), &former);
  EXPECT_EQ(own.slot.get(), &next);
  EXPECT_EQ(next.events, "close open ");
}

TEST_F(SwitchParts, AChangedDestinationThatAllHaveLeftMeanwhileIsOpenedOnce) {
  former.onClose = [&] { switchTo(other, debugger(), false); };
  EXPECT_EQ(switchTo(own, next, true), &former);
  EXPECT_EQ(own.slot.get(), &next);
  EXPECT_EQ(next.events, "close open ");
}

TEST_F(SwitchParts, AChangedDestinationThatAnotherTakesMeanwhileIsOpenedOnce) {
  former.onClose = [&] { switchTo(other, spare, false); };
  EXPECT_EQ(switchTo(own, spare, true), &former);
  EXPECT_EQ(own.slot.get(), &spare);
  EXPECT_EQ(spare.events, "open ");
}

TEST_F(SwitchParts, ADestinationThatIsTakenAgainAndByAnotherMeanwhileIsOpenedOnce) {
  former.onClose = [&] {
    former.onClose = nullptr;
    switchTo(other, former, false);
  };
  EXPECT_EQ(switchTo(own, former, false), &former);
  EXPECT_EQ(other.slot.get(), &former);
  EXPECT_EQ(former.events, "close open ");
}

TEST_F(SwitchParts, AChangedDestinationThatDoesNotOpenComesBackForTheOthers) {
  next.failingOpens = 1;
  EXPECT_EQ(switchTo(own, next, true), &former);
  EXPECT_EQ(own.slot.get(), &former);
  EXPECT_EQ(other.slot.get(), &next);
  EXPECT_EQ(next.events, "close open-fails configure open ");
}

TEST_F(SwitchParts, AChangedDestinationThatIsLostSendsTheOthersToTheDebugger) {
  next.failingOpens = 2;
  EXPECT_EQ(switchTo(own, next, true), &former);
  EXPECT_EQ(own.slot.get(), &former);
  EXPECT_EQ(other.slot.get(), &debugger());
  EXPECT_EQ(countAtDebugger("The trace destination has been changed to VEX print"), 1);
}

TEST_F(SwitchParts, AChangedDestinationWhoseSettingsCannotBeKeptStaysAsItIs) {
  next.settings = std::string(1'000, 'x');
  ntoshost::failFrom(ntoshost::kFaultMemory, 1);
  EXPECT_EQ(switchTo(own, next, true), &former);
  ntoshost::clearFaults();
  EXPECT_EQ(own.slot.get(), &former);
  EXPECT_EQ(next.events, "");
}

TEST_F(SwitchParts, AChangedDestinationThatGoesAsItIsClosedSendsTheOthersToTheDebugger) {
  next.onClose = [&] {
    next.onClose = nullptr;
    next.leaveStream();
  };
  EXPECT_EQ(switchTo(own, next, true), &former);
  EXPECT_EQ(own.slot.get(), &former);
  EXPECT_EQ(other.slot.get(), &debugger());
}

TEST_F(SwitchParts, AChangedDestinationThatGoesAsItIsGivenItsWordsSendsTheOthersToTheDebugger) {
  next.failingOpens = 1;
  next.onConfigure = [&] { next.leaveStream(); };
  EXPECT_EQ(switchTo(own, next, true), &former);
  EXPECT_EQ(own.slot.get(), &former);
  EXPECT_EQ(other.slot.get(), &debugger());
  EXPECT_EQ(next.events.substr(0, 27), "close open-fails configure ");
  EXPECT_EQ(next.events.find("open "), std::string::npos);
}

TEST_F(SwitchParts, ASharedDestinationThatIsLostSendsAllToTheDebugger) {
  share();
  next.failingOpens = 2;
  EXPECT_EQ(switchTo(own, next, false), &debugger());
  EXPECT_EQ(own.slot.get(), &debugger());
  EXPECT_EQ(other.slot.get(), &debugger());
  EXPECT_EQ(countAtDebugger("The trace destination has been changed to VEX print"), 2);
}

TEST_F(SwitchParts, AStreamThatTakesWhatThenDoesNotOpenGoesToTheDebugger) {
  spare.failingOpens = 1;
  spare.onOpen = [&] { switchTo(other, spare, false); };
  EXPECT_EQ(switchTo(own, spare, false), &former);
  EXPECT_EQ(own.slot.get(), &former);
  EXPECT_EQ(other.slot.get(), &debugger());
}

TEST_F(SwitchParts, AStreamThatTakesAFormerOneWhichDoesNotOpenAgainGoesToTheDebugger) {
  spare.failingOpens = 1;
  former.failingOpens = 1;
  former.onOpen = [&] { switchTo(other, former, false); };
  EXPECT_EQ(switchTo(own, spare, false), &debugger());
  EXPECT_EQ(other.slot.get(), &debugger());
}

TEST_F(SwitchParts, WhatOpensAfterItHasSentItsStreamOnIsClosedAgain) {
  spare.onOpen = [&] { switchTo(own, next, false); };
  switchTo(own, spare, false);
  EXPECT_EQ(own.slot.get(), &next);
  EXPECT_EQ(spare.events, "close open close ");
}

TEST_F(SwitchParts, WhatDoesNotOpenIsNotClosedHoweverOftenTheStreamMovesBefore) {
  tCallingKept last;
  int moves = 0;
  auto const move = [&] {
    ++moves;
    switchTo(own, own.slot.get() == &spare ? former : spare, false);
  };
  former.onClose = spare.onClose = move;
  last.failingOpens = 1;
  switchTo(own, last, false);
  EXPECT_GE(moves, 4);
  EXPECT_EQ(last.events, "open-fails ");
}

TEST_F(SwitchParts, TheLineOfTheSwitchKeepsNobodyOut) {
  former.onPut = [&](std::string const& piece) {
    if (piece.find("Switching") == 0) own.sendElsewhere("beside");
  };
  switchTo(own, spare, false);
  EXPECT_TRUE(former.has("beside"));
}

TEST_F(SwitchParts, TheLineThatNothingHasChangedKeepsNobodyOut) {
  spare.failingOpens = 1;
  former.onPut = [&](std::string const& piece) {
    if (piece.find("couldn't be opened") != std::string::npos) own.sendElsewhere("beside");
  };
  EXPECT_EQ(switchTo(own, spare, false), &former);
  EXPECT_TRUE(former.has("beside"));
}

namespace {

// Sends a text of another thread through a stream while the debugger prints: elsewhere, as printing
// does not print.
class tBesidePrint {
 public:
  explicit tBesidePrint(tOwnParts& own) : own(own) {
    ntoshost::setDebugPrintSink(
        [](void* print, char const*, size_t) { static_cast<tBesidePrint*>(print)->send(); }, this);
  }

  tKeptLines arrived;

 private:
  void send() {
    iTraceDestination* const current = own.destination;
    own.destination = &arrived;
    own.sendElsewhere("beside");
    own.destination = current;
  }

  tOwnParts& own;
};

}  // namespace

TEST_F(SwitchParts, TheLineThatTheDebuggerIsLeftKeepsNobodyOut) {
  spare.failingOpens = former.failingOpens = 1;
  tBesidePrint beside(own);
  EXPECT_EQ(switchTo(own, spare, false), &debugger());
  EXPECT_NE(beside.arrived.text(), "");
}

TEST_F(SwitchParts, AStreamThatEndsClosesWhatItHasTakenUnlessItIsTheModules) {
  own.slot.hasTaken = true;
  leaveDestination(own, false);
  EXPECT_EQ(former.events, "");
  leaveDestination(own, true);
  EXPECT_EQ(former.events, "close ");
}

TEST_F(SwitchParts, FourClosesThatOpenAnotherAreFollowed) {
  int closes = 0;
  own.slot.isOpenedWithin = true;
  former.onClose = [&] {
    ++closes;
    own.slot.isOpenedWithin = true;
  };
  tDestinationSwitch::closeOpened(own);
  EXPECT_EQ(closes, 4);
}

TEST_F(GivenUp, AStreamThatEndsBesideAPutLeavesItsDestinationOpen) {
  tTextOfAnother const text(own.slot, former);
  own.slot.hasTaken = true;
  leaveDestination(own, true);
  EXPECT_EQ(former.events, "");
}

TEST_F(GivenUp, ADestinationOfTheModuleStaysBesideAPut) {
  {
    tTextOfAnother const text(own.slot, former);
    EXPECT_FALSE(mayEnd(former));
  }
  EXPECT_TRUE(isLogged("a trace destination is left open at the end: thread 0xFFFFFFF1"));
}

TEST_F(GivenUp, ADestinationOfTheModuleThatNobodyIsWithinMayEnd) {
  EXPECT_TRUE(mayEnd(former));
  EXPECT_EQ(events.read(), "");
}

TEST_F(SwitchParts, AStreamThatCouldNotMoveClosesItsDestinationAtItsEnd) {
  tKeptLines taken;
  {
    tOwnTrace stays(debugger());
    stays.setDestination(taken);
    tOwnTrace leaves(debugger());
    leaves.setDestination(taken);
    spare.failingOpens = 1;
    EXPECT_EQ(stays.setDestination(spare), &taken);
    leaves.setDestination(debugger());
    EXPECT_EQ(taken.events, "open ");
  }
  EXPECT_EQ(taken.events, "open close ");
}

TEST_F(SwitchParts, AFormerOneThatItsCloseHasOpenedAgainIsClosed) {
  spare.failingOpens = 1;
  former.onClose = [&] {
    former.onClose = nullptr;
    switchTo(own, spare, false);
  };
  EXPECT_EQ(switchTo(own, next, false), &former);
  EXPECT_EQ(own.slot.get(), &next);
  EXPECT_EQ(former.events.substr(former.events.size() - 11), "open close ");
}

TEST_F(SwitchParts, APutMaySwitchAnotherStream) {
  former.onPut = [&](std::string const&) { switchTo(other, spare, false); };
  own.send("text");
  EXPECT_EQ(other.slot.get(), &spare);
}

TEST_F(SwitchParts, ADestinationThatGoesIsClosedOnce) {
  former.leaveStream();
  EXPECT_EQ(own.slot.get(), &debugger());
  EXPECT_EQ(former.events, "close ");
}

TEST_F(GivenUp, ADestinationGoesBesideALineAtTheDebugger) {
  holdOther();
  other.slot.install(debugger());
  former.leaveStream();
  EXPECT_EQ(own.slot.get(), &debugger());
  EXPECT_EQ(held.acquired, 0);
  EXPECT_EQ(events.read(), "");
}

TEST_F(GivenUp, ADestinationThatGoesBesideALineOfItsOwnIsTakenOffAndClosed) {
  holdOther();
  tPatience::setExhausted(false);
  ntoshost::setTimeRate(1'000);
  next.leaveStream();
  ntoshost::setTimeRate(1);
  EXPECT_EQ(other.slot.get(), &debugger());
  EXPECT_EQ(next.events, "close ");
  EXPECT_FALSE(isLogged("a trace destination that is destroyed"));
  EXPECT_FALSE(tPatience::isExhausted());
}

namespace {

// Says of its settings what a test wants to see done with it.
class tOddSettings final : public tKeptLines {
 public:
  char* inquire(char* buffer, unsigned int size, unsigned int* needed) override {
    if (buffer == nullptr) sizeWithoutBuffer = size;
    if (buffer != nullptr && isFilling) memset(buffer, 'x', size);
    *needed = buffer != nullptr && growsOnce ? 1'000 : 1;
    if (buffer != nullptr) growsOnce = false;
    return buffer;
  }

  unsigned int sizeWithoutBuffer = 99;
  bool isFilling = false;
  bool growsOnce = false;
};

// Settings in memory that was something else before, with more of it behind them.
struct tPlacedSettings {
  explicit tPlacedSettings(tOddSettings& odd) {
    memset(memory, kBefore, sizeof(memory));
    settings = new (memory) tFormerSettings(odd);
  }
  ~tPlacedSettings() { settings->~tFormerSettings(); }

  bool isWithin() const {
    for (size_t index = sizeof(tFormerSettings); index < sizeof(memory); ++index) {
      if (memory[index] != kBefore) return false;
    }
    return true;
  }

  static constexpr char kBefore = 'b';
  alignas(tFormerSettings) char memory[sizeof(tFormerSettings) + 16];
  tFormerSettings* settings;
};

}  // namespace

TEST(FormerSettings, AreMeasuredWithoutABuffer) {
  tOddSettings odd;
  tFormerSettings const settings(odd);
  EXPECT_EQ(odd.sizeWithoutBuffer, 0u);
}

TEST(FormerSettings, StayWithinTheirRoom) {
  tOddSettings odd;
  odd.isFilling = true;
  tPlacedSettings const placed(odd);
  EXPECT_TRUE(placed.isWithin());
}

TEST(FormerSettings, ThatAreNotWrittenHaveNoWords) {
  tOddSettings odd;
  tPlacedSettings const placed(odd);
  EXPECT_FALSE(placed.settings->hasFailed());
  placed.settings->restore(odd);
  EXPECT_EQ(odd.events, "");
}

TEST(FormerSettings, ThatWereLongForAMomentAreReadAgain) {
  tOddSettings odd;
  odd.growsOnce = true;
  tFormerSettings const settings(odd);
  EXPECT_FALSE(settings.hasFailed());
}
