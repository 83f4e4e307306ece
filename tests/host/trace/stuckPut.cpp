// A put that does not come out: whoever switches gives up after ten seconds, and lines flow again.

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <mutex>
#include <thread>

#include "hurriedTime.h"
#include "keptLines.h"
#include "newEvents.h"
#include "ntos/thread.h"
#include "ntoshost/debugPrint.h"
#include "ownParts.h"
#include "oxdiagk/tFileTraceDestination.h"
#include "oxdiagk/tVEXTraceDestination.h"
#include "startedModules.h"
#include "trace/findOrMake.h"
#include "trace/mayEnd.h"
#include "trace/tTextsOnTheWay.h"
#include "vexk/threadUtility.h"

namespace {

using namespace nOXDIAG100;

constexpr auto kLongEnough = std::chrono::seconds(30);
constexpr auto kPatience = std::chrono::seconds(10);
constexpr auto kAWhile = std::chrono::milliseconds(50);
constexpr auto kTwentySeconds = std::chrono::milliseconds(20'000 / tHurriedTime::kRate);
constexpr auto kSomeLooks = std::chrono::milliseconds(300);  // while time does not hurry
constexpr u64 kNeverMeasured = ~0ull / 2;

// Holds the thread that puts "stuck" until it is let go; others come and go.
class tStuckDestination : public iTraceDestination {
 public:
  ~tStuckDestination() override { leaveStream(); }

  iTraceDestination& put(char const* text) override {
    return put(text, static_cast<unsigned int>(strlen(text)));
  }
  iTraceDestination& put(char const* text, unsigned int length) override {
    std::string const line(text, length);
    if (line.find("stuck") != std::string::npos || (sticksToSwitches && isSwitch(line))) stick();
    ++texts;
    return *this;
  }
  void configure(int, char** const) override { ++configurations; }
  char* inquire(char* buffer, unsigned int size, unsigned int* required) override {
    return inquireText(" --destination sticky", buffer, size, required);
  }
  u32 open() override { return 1; }
  void close() override { ++closes; }
  char const* getDescription() const override { return "sticky"; }

  std::atomic<int> texts = 0;
  std::atomic<int> closes = 0;
  std::atomic<int> configurations = 0;
  std::atomic<u32> thread = 0;  // the one within
  std::atomic<bool> mayGo = false;
  bool sticksToSwitches = false;

 private:
  static bool isSwitch(std::string const& line) { return line.find("Switching") == 0; }

  void stick() {
    thread = tThreadUtility::getCurrentThreadId();
    // Looks now and then.
    while (!mayGo) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
};

// A thread that is within the put of a destination, until the object goes.
class tStuckThread {
 public:
  tStuckThread(tTrace& trace, tStuckDestination& destination)
      : tStuckThread(destination, [&trace] { trace.put("stuck").endl(); }) {}

  template <class Work>
  tStuckThread(tStuckDestination& destination, Work work) : destination(destination), thread(work) {
    while (destination.thread == 0) std::this_thread::yield();
  }
  ~tStuckThread() { letGo(); }

  void letGo() {
    destination.mayGo = true;
    if (thread.joinable()) thread.join();
  }

 private:
  tStuckDestination& destination;
  std::thread thread;
};

// A thread with an open line of a stream, until the object goes.
class tOpenLine {
 public:
  explicit tOpenLine(tTrace& trace)
      : thread([this, &trace] {
          id = tThreadUtility::getCurrentThreadId();
          trace.putPrefix("test", tSSVersion(), 1, "file", 100, tTrace::kTraceLine);
          isOpen.set_value();
          mayEnd.get_future().wait();
          trace.endl();
        }) {}
  ~tOpenLine() { end(); }

  void await() { isOpen.get_future().wait(); }
  void end() {
    if (!thread.joinable()) return;
    mayEnd.set_value();
    thread.join();
  }
  u32 getThread() const { return id; }

 private:
  std::promise<void> isOpen;
  std::promise<void> mayEnd;
  std::atomic<u32> id = 0;
  std::thread thread;
};

std::string nameOf(u32 thread) {
  char text[32];
  snprintf(text, sizeof(text), "thread 0x%X ", thread);
  return text;
}

// What is printed to the debugger, by any thread.
class tPrinted {
 public:
  tPrinted() {
    ntoshost::setDebugPrintSink(
        [](void* context, char const* printed, size_t length) {
          tPrinted& self = *static_cast<tPrinted*>(context);
          std::lock_guard const guard(self.lock);
          self.text.append(printed, length);
        },
        this);
  }
  ~tPrinted() { ntoshost::setDebugPrintSink(nullptr, nullptr); }

  bool has(char const* wanted) {
    std::lock_guard const guard(lock);
    return text.find(wanted) != std::string::npos;
  }

 private:
  std::mutex lock;
  std::string text;
};

class StuckPut : public testing::Test {
 protected:
  tHurriedTime hurry;
  tPrinted print;
  tNewEvents events;
  tStuckDestination sticky;
};

}  // namespace

TEST_F(StuckPut, ASwitchIsGivenUpAndTheFormerDestinationStays) {
  tKeptLines next;
  tOwnTrace trace(sticky);
  tStuckThread stuck(trace, sticky);
  EXPECT_EQ(trace.setDestination(next), &sticky);
  EXPECT_EQ(trace.getDestination(), &sticky);
  EXPECT_EQ(next.events, "");
  EXPECT_EQ(sticky.closes, 0);
  EXPECT_NE(events.read().find("the trace destination is not switched: " + nameOf(sticky.thread) +
                               "is still within its put after 10 s"),
            std::string::npos)
      << events.read();
}

TEST_F(StuckPut, LinesFlowAgainAfterASwitchThatWasGivenUp) {
  tKeptLines next;
  tOwnTrace trace(sticky);
  tStuckThread stuck(trace, sticky);
  trace.setDestination(next);
  int const before = sticky.texts;
  trace.put("line").endl();
  EXPECT_EQ(sticky.texts, before + 1);
}

TEST_F(StuckPut, TheNextSwitchSucceedsOnceTheThreadIsOut) {
  tKeptLines next;
  tOwnTrace trace(sticky);
  tStuckThread stuck(trace, sticky);
  trace.setDestination(next);
  stuck.letGo();
  EXPECT_EQ(trace.setDestination(next), &sticky);
  EXPECT_EQ(trace.getDestination(), &next);
  EXPECT_EQ(sticky.closes, 1);
}

TEST_F(StuckPut, TheStreamIsConfiguredAndInquired) {
  tKeptLines next;
  tOwnTrace trace(sticky);
  tStuckThread stuck(trace, sticky);
  trace.setDestination(next);
  trace.configure("--timestamp on");
  EXPECT_NE(inquiredText(trace).find("--destination sticky"), std::string::npos);
  EXPECT_NE(inquiredText(trace).find("--timestamp on"), std::string::npos);
}

TEST_F(StuckPut, OtherStreamsSwitchWhatTheyLike) {
  tKeptLines kept;
  tOwnTrace trace(sticky);
  tOwnTrace other(kept);
  tStuckThread stuck(trace, sticky);
  EXPECT_EQ(other.setDestination(tVEXTraceDestination::getInstance()), &kept);
  EXPECT_EQ(other.setDestination(sticky), &tVEXTraceDestination::getInstance());
  EXPECT_EQ(other.setDestination(kept), &sticky);
  EXPECT_EQ(sticky.closes, 0);
}

// A put that gets stuck with the line of the switch itself.
TEST_F(StuckPut, ASwitchThatIsStuckItselfMutesNobody) {
  tKeptLines next;
  sticky.sticksToSwitches = true;
  tOwnTrace trace(sticky);
  trace.pushConfiguration();
  tStuckThread stuck(sticky, [&] { trace.setDestination(next); });
  int const before = sticky.texts;
  trace.put("line").endl();
  EXPECT_EQ(sticky.texts, before + 1);
  trace.configure("--timestamp on");
  EXPECT_EQ(trace.timeStampIsEnabled(), 0u);
  EXPECT_EQ(inquiredText(trace), "");
  trace.pushConfiguration();
  trace.popConfiguration();
  EXPECT_EQ(trace.countSavedConfigurations(), 0u);
  trace.getClock().setOffset(tLineClock::kLineOffset, kNeverMeasured);
  trace.calibrate();
  EXPECT_EQ(trace.getClock().getOffset(tLineClock::kLineOffset), kNeverMeasured);
  EXPECT_FALSE(mayEnd(next));
  EXPECT_NE(events.read().find("the trace is not configured: " + nameOf(sticky.thread)),
            std::string::npos)
      << events.read();
  stuck.letGo();
  EXPECT_EQ(trace.getDestination(), &next);
  EXPECT_EQ(trace.countSavedConfigurations(), 1u);
}

TEST_F(StuckPut, StreamsAndDestinationsComeAndGoWhenASwitchThatIsStuckItselfIsOver) {
  tKeptLines next;
  sticky.sticksToSwitches = true;
  tOwnTrace trace(sticky);
  auto old = std::make_unique<tOwnTrace>(next);
  auto leaving = std::make_unique<tStuckDestination>();
  tStuckThread stuck(sticky, [&] { trace.setDestination(next); });
  auto const fresh = std::async(std::launch::async, [&] { tOwnTrace const made(next); });
  auto const gone = std::async(std::launch::async, [&] { old.reset(); });
  auto const left = std::async(std::launch::async, [&] { leaving.reset(); });
  for (int time = 0; time < 2; ++time) trace.configure("--timestamp on");  // gives up each time
  EXPECT_NE(fresh.wait_for(kAWhile), std::future_status::ready);
  EXPECT_NE(gone.wait_for(kAWhile), std::future_status::ready);
  EXPECT_NE(left.wait_for(kAWhile), std::future_status::ready);
  stuck.letGo();
  EXPECT_EQ(fresh.wait_for(kLongEnough), std::future_status::ready);
  EXPECT_EQ(gone.wait_for(kLongEnough), std::future_status::ready);
  EXPECT_EQ(left.wait_for(kLongEnough), std::future_status::ready);
}

TEST_F(StuckPut, TheMutexIsSwitchedWhenALineEndsHoweverLongItTakes) {
  tOwnTrace trace(sticky);
  trace.enableMutex();
  auto line = std::make_unique<tOpenLine>(trace);
  line->await();
  auto const turned = std::async(std::launch::async, [&] { trace.disableMutex(); });
  EXPECT_EQ(turned.wait_for(kTwentySeconds), std::future_status::timeout);
  line.reset();
  EXPECT_EQ(turned.wait_for(kLongEnough), std::future_status::ready);
  EXPECT_EQ(trace.mutexIsEnabled(), 0u);
}

// The line was long before its put, and the put comes out.
TEST_F(StuckPut, TheMutexIsSwitchedThoughALongLineIsSeenWithinAPut) {
  tOwnTrace trace(sticky);
  trace.enableMutex();
  std::promise<void> mayPut;
  std::promise<void> isOpen;
  std::thread line([&] {
    trace.putPrefix("test", tSSVersion(), 1, "file", 100, tTrace::kTraceLine);
    isOpen.set_value();
    mayPut.get_future().wait();
    trace.put("stuck").endl();
  });
  isOpen.get_future().wait();
  auto const turned = std::async(std::launch::async, [&] { trace.disableMutex(); });
  EXPECT_EQ(turned.wait_for(kTwentySeconds), std::future_status::timeout);
  ntoshost::setTimeRate(1);
  mayPut.set_value();
  EXPECT_EQ(turned.wait_for(kSomeLooks), std::future_status::timeout);
  sticky.mayGo = true;
  EXPECT_EQ(turned.wait_for(kLongEnough), std::future_status::ready);
  EXPECT_EQ(trace.mutexIsEnabled(), 0u);
  line.join();
}

TEST_F(StuckPut, ALineThatDoesNotEndHoldsUpNoSwitchForEver) {
  tKeptLines next;
  tOwnTrace trace(sticky);
  trace.enableMutex();
  {
    tOpenLine line(trace);
    line.await();
    EXPECT_EQ(trace.setDestination(next), &sticky);
    EXPECT_NE(events.read().find(nameOf(line.getThread()) + "is still within a line"),
              std::string::npos)
        << events.read();
  }
  trace.setDestination(next);
  EXPECT_EQ(trace.getDestination(), &next);
}

TEST_F(StuckPut, TheThreadIsThatOfTheLineInTheWay) {
  tKeptLines kept;
  tOwnTrace trace(sticky);
  tOwnTrace other(kept);  // with a lock of its own
  other.configure("--mutex on --mutex-kernel-token 1:2");
  trace.enableMutex();
  tOpenLine inTheWay(trace);
  tOpenLine elsewhere(other);
  inTheWay.await();
  elsewhere.await();
  EXPECT_EQ(trace.setDestination(kept), &sticky);
  EXPECT_NE(events.read().find(nameOf(inTheWay.getThread()) + "is still within a line"),
            std::string::npos)
      << events.read();
}

TEST_F(StuckPut, ATokenThatCameAfterTheLockNamesNobodyElse) {
  tKeptLines kept;
  tOwnTrace trace(sticky);
  tOwnTrace other(kept);
  other.configure("--mutex-kernel-token 1:2");
  other.enableMutex();
  trace.enableMutex();
  trace.configure("--mutex-kernel-token 1:2");
  tOpenLine inTheWay(trace);
  tOpenLine elsewhere(other);
  inTheWay.await();
  elsewhere.await();
  EXPECT_EQ(trace.setDestination(kept), &sticky);
  EXPECT_NE(events.read().find(nameOf(inTheWay.getThread()) + "is still within a line"),
            std::string::npos)
      << events.read();
}

TEST_F(StuckPut, ALockedLineIsNamedWithThePutThatItIsStuckIn) {
  tKeptLines next;
  tOwnTrace trace(sticky);
  trace.enableMutex();
  tStuckThread stuck(sticky, [&trace] {
    trace.putPrefix("test", tSSVersion(), 1, "file", 100, tTrace::kTraceLine).put("stuck").endl();
  });
  EXPECT_EQ(trace.setDestination(next), &sticky);
  EXPECT_NE(events.read().find(nameOf(sticky.thread) + "is still within its put"),
            std::string::npos)
      << events.read();
}

// New words for a destination that other streams use: their lines are waited for, too.
TEST_F(StuckPut, ALineOfAnotherStreamIsNamedToo) {
  tOwnTrace trace(sticky);
  tOwnTrace other(tVEXTraceDestination::getInstance());
  other.configure("--destination recorder 16 --mutex on");
  {
    tOpenLine line(other);
    line.await();
    trace.configure("--destination recorder 32");
    EXPECT_EQ(trace.getDestination(), &sticky);
    EXPECT_NE(events.read().find(nameOf(line.getThread()) + "is still within a line"),
              std::string::npos)
        << events.read();
  }
  other.setDestination(tVEXTraceDestination::getInstance());
}

TEST_F(StuckPut, ACounterThatLeapsAheadEndsTheWait) {
  constexpr i64 kHour = 3'600 * i64{10'000'000};
  ntoshost::setTimeRate(1);
  tKeptLines next;
  tOwnTrace trace(sticky);
  tStuckThread stuck(trace, sticky);
  std::future<iTraceDestination*> change =
      std::async(std::launch::async, [&] { return trace.setDestination(next); });
  std::this_thread::sleep_for(kAWhile);  // so that the switch waits
  ntoshost::moveTime(kHour);
  EXPECT_EQ(change.wait_for(std::chrono::seconds(5)), std::future_status::ready);
  EXPECT_EQ(change.get(), &sticky);
}

// A line in between may pass what neither of the filters passes.
TEST_F(StuckPut, AFilterIsChangedWhenTheLineOfAnotherThreadHasEnded) {
  ntoshost::setTimeRate(1);
  for (char const* const option : {"--filter verbosity>=200", "--linenumber <500"}) {
    tOwnTrace trace(sticky);
    trace.enableMutex();
    tOpenLine line(trace);
    line.await();
    std::future<void> const change =
        std::async(std::launch::async, [&] { trace.configure(option); });
    EXPECT_EQ(change.wait_for(kAWhile), std::future_status::timeout) << option;
    line.end();
    EXPECT_EQ(change.wait_for(kLongEnough), std::future_status::ready) << option;
  }
}

TEST_F(StuckPut, ASwitchWithoutAFieldWaitsForNoLine) {
  ntoshost::setTimeRate(1);
  tOwnTrace trace(sticky);
  trace.enableMutex();
  tOpenLine line(trace);
  line.await();
  std::future<void> const change =
      std::async(std::launch::async, [&] { trace.configure("--timestamp"); });
  EXPECT_EQ(change.wait_for(kPatience / 2), std::future_status::ready);
  EXPECT_EQ(trace.timeStampIsEnabled(), 1u);
}

TEST_F(StuckPut, ASwitchBehindAFilterThatWasChangedWaitsAsEver) {
  ntoshost::setTimeRate(1);
  tOwnTrace trace(sticky);
  tStuckThread stuck(trace, sticky);
  std::future<void> const change = std::async(
      std::launch::async, [&] { trace.configure("--filter verbosity>=1 --destination vex"); });
  EXPECT_EQ(change.wait_for(kAWhile), std::future_status::timeout);
  stuck.letGo();
  EXPECT_EQ(change.wait_for(kLongEnough), std::future_status::ready);
  EXPECT_EQ(trace.getDestination(), &tVEXTraceDestination::getInstance());
}

// Then none of them was in the way for so long.
TEST_F(StuckPut, NobodyIsNamedWhenALineFollowsAnother) {
  tKeptLines next;
  tOwnTrace trace(sticky);
  trace.enableMutex();
  tOpenLine first(trace);
  first.await();
  tOpenLine second(trace);
  // So that it waits for the first one, in front of the switch.
  std::this_thread::sleep_for(kAWhile);
  std::future<void> const change =
      std::async(std::launch::async, [&] { trace.setDestination(next); });
  std::this_thread::sleep_for(kAWhile);  // so that the switch waits, too
  first.end();
  second.await();
  EXPECT_EQ(change.wait_for(kLongEnough), std::future_status::ready);
  EXPECT_EQ(trace.getDestination(), &sticky);
  EXPECT_NE(events.read().find(": another thread is still within a line after 10 s"),
            std::string::npos)
      << events.read();
}

// As a switch to it, which closes and opens it for both.
TEST_F(StuckPut, ASharedDestinationIsNotOpenedAnewBesideALineOfAnother) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  tOwnTrace other(kept);
  other.enableMutex();
  tOpenLine line(other);
  line.await();
  EXPECT_EQ(trace.setDestination(kept), &kept);
  EXPECT_EQ(kept.events, "");
  EXPECT_NE(events.read().find(nameOf(line.getThread()) + "is still within a line"),
            std::string::npos)
      << events.read();
}

TEST_F(StuckPut, ADestinationIsNotGivenItsWordsBesideALineOfAnother) {
  tFileTraceDestination& file = *tFileTraceDestination::getInstance();
  tOwnTrace trace(sticky);
  tOwnTrace other(file);
  other.enableMutex();
  tOpenLine line(other);
  line.await();
  trace.configure("--destination file C:/other.out --timestamp on");
  EXPECT_STREQ(file.getDescription(), "File = C:/DebugTrace.out");
  EXPECT_EQ(trace.getDestination(), &sticky);
  EXPECT_EQ(trace.timeStampIsEnabled(), 1u);
}

TEST_F(StuckPut, ADestinationIsNotGivenItsWords) {
  constexpr u32 kSomebody = 0xFFFFFFF1;
  tFileTraceDestination& file = *tFileTraceDestination::getInstance();
  iTraceDestination* current = &file;
  tDestinationSlot slot(current);
  u32 const place = tTextsOnTheWay::enter(kSomebody, slot);
  tTextsOnTheWay::direct(place, file);
  tOwnTrace trace(sticky);
  trace.configure("--destination file C:/other.out --timestamp on");
  EXPECT_STREQ(file.getDescription(), "File = C:/DebugTrace.out");
  EXPECT_EQ(trace.getDestination(), &sticky);
  EXPECT_EQ(trace.timeStampIsEnabled(), 1u);
  tTextsOnTheWay::leave(place);
}

TEST_F(StuckPut, DestinationsThatAreNotGivenTheirWordsAreWaitedForOnce) {
  tFileTraceDestination& file = *tFileTraceDestination::getInstance();
  tOwnTrace trace(sticky);
  tOwnTrace other(file);
  other.enableMutex();
  tOpenLine line(other);
  line.await();
  std::string options;
  for (int count = 0; count < 100; ++count) options += "--destination file C:/other.out ";
  std::future<void> const configuration =
      std::async(std::launch::async, [&] { trace.configure(options.c_str()); });
  EXPECT_EQ(configuration.wait_for(100 * kPatience / tHurriedTime::kRate / 4),
            std::future_status::ready);
}

namespace {

// Opens when it may.
class tSlowOpening : public tKeptLines {
 public:
  u32 open() override {
    isWithin = true;
    // Looks now and then.
    while (!mayGo) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return 1;
  }

  std::atomic<bool> isWithin = false;
  std::atomic<bool> mayGo = false;
};

}  // namespace

// Ten seconds are a put's: what is opened for longer is waited for.
TEST_F(StuckPut, AnOpenOfAnyLengthHoldsUpConfigurationsAndNoLine) {
  tSlowOpening next;
  tOwnTrace trace(sticky);
  std::future<void> const change =
      std::async(std::launch::async, [&] { trace.setDestination(next); });
  while (!next.isWithin) std::this_thread::yield();
  std::future<void> const configuration =
      std::async(std::launch::async, [&] { trace.configure("--timestamp on"); });
  trace.put("line").endl();
  EXPECT_EQ(configuration.wait_for(kTwentySeconds), std::future_status::timeout);
  next.mayGo = true;
  EXPECT_EQ(configuration.wait_for(kLongEnough), std::future_status::ready);
  EXPECT_EQ(trace.timeStampIsEnabled(), 1u);
  EXPECT_EQ(trace.getDestination(), &next);
  trace.setDestination(tVEXTraceDestination::getInstance());
}

namespace {

// Traces when it has been opened.
class tTracedOpening final : public tSlowOpening {
 public:
  explicit tTracedOpening(tTrace& trace) : trace(trace) {}

  u32 open() override {
    u32 const isOpen = tSlowOpening::open();
    trace.put("stuck").endl();
    return isOpen;
  }

 private:
  tTrace& trace;
};

}  // namespace

TEST_F(StuckPut, AConfigurationWaitsThoughALongOneIsSeenWithinAPut) {
  tOwnTrace log(sticky);
  tTracedOpening next(log);
  tOwnTrace trace(tVEXTraceDestination::getInstance());
  std::future<void> const change =
      std::async(std::launch::async, [&] { trace.setDestination(next); });
  while (!next.isWithin) std::this_thread::yield();
  std::future<void> const configuration =
      std::async(std::launch::async, [&] { trace.configure("--timestamp on"); });
  EXPECT_EQ(configuration.wait_for(kTwentySeconds), std::future_status::timeout);
  ntoshost::setTimeRate(1);
  next.mayGo = true;
  EXPECT_EQ(configuration.wait_for(kSomeLooks), std::future_status::timeout);
  sticky.mayGo = true;
  EXPECT_EQ(configuration.wait_for(kLongEnough), std::future_status::ready);
  EXPECT_EQ(trace.timeStampIsEnabled(), 1u);
  trace.setDestination(tVEXTraceDestination::getInstance());
}

TEST_F(StuckPut, ADestinationThatGoesIsTakenOffItsStreamsAndThenWaits) {
  tOwnTrace trace(tVEXTraceDestination::getInstance());
  tOwnTrace other(tVEXTraceDestination::getInstance());
  auto going = std::make_unique<tStuckDestination>();
  trace.setDestination(*going);
  other.setDestination(*going);
  tStuckDestination& within = *going;
  std::thread writer([&] { trace.put("stuck").endl(); });
  while (within.thread == 0) std::this_thread::yield();
  std::future<void> const end = std::async(std::launch::async, [&] { going.reset(); });
  while (trace.getDestination() == &within || other.getDestination() == &within) {
    std::this_thread::yield();
  }
  trace.put("flows").endl();
  EXPECT_TRUE(print.has("flows"));
  trace.configure("--timestamp on");
  EXPECT_EQ(trace.timeStampIsEnabled(), 1u);
  EXPECT_EQ(end.wait_for(kAWhile), std::future_status::timeout);
  EXPECT_NE(events.read().find("a trace destination that is destroyed"), std::string::npos)
      << events.read();
  within.mayGo = true;
  EXPECT_EQ(end.wait_for(kLongEnough), std::future_status::ready);
  writer.join();
}

TEST_F(StuckPut, ADestinationThatGoesWaitsOnceForAllItsStreams) {
  constexpr auto kFewWaits = std::chrono::milliseconds(5 * 10'000 / tHurriedTime::kRate);
  auto going = std::make_unique<tStuckDestination>();
  tStuckDestination const& within = *going;
  std::vector<std::unique_ptr<tOwnParts>> streams;
  std::vector<std::unique_ptr<tTextOfAnother>> texts;
  while (streams.size() < 40) {
    streams.push_back(std::make_unique<tOwnParts>(*going));
    u32 const writer = kAnotherThread - static_cast<u32>(streams.size());
    texts.push_back(std::make_unique<tTextOfAnother>(streams.back()->slot, within, writer));
  }
  auto const start = std::chrono::steady_clock::now();
  std::thread end([&] { going.reset(); });
  for (std::unique_ptr<tOwnParts> const& stream : streams) {
    while (stream->slot.get() == &within) std::this_thread::yield();
  }
  EXPECT_LT(std::chrono::steady_clock::now() - start, kFewWaits);
  texts.clear();
  end.join();
}

// Lest others keep it waiting.
TEST_F(StuckPut, AStreamThatEndsKeepsTextsOut) {
  constexpr auto kHalf = std::chrono::seconds(5);
  ntoshost::setTimeRate(1);
  auto trace = std::make_unique<tOwnTrace>(sticky);
  tOwnTrace& ending = *trace;
  auto text = std::make_unique<tTextOfAnother>(tLiveStreams::findKeeper(sticky)->slot, sticky);
  std::thread end([&] { trace.reset(); });
  auto const start = std::chrono::steady_clock::now();
  bool hasArrived = true;
  while (hasArrived && std::chrono::steady_clock::now() - start < kHalf) {
    int const before = sticky.texts;
    ending.put("x").endl();
    hasArrived = sticky.texts != before;
  }
  EXPECT_FALSE(hasArrived);
  text.reset();
  end.join();
}

TEST_F(StuckPut, NobodyKeepsTheLockOfTheStreams) {
  std::thread([&] {
    EXPECT_TRUE(mayEnd(sticky));
    EXPECT_FALSE(KeAreApcsDisabled());
  }).join();
}

TEST_F(StuckPut, ALockedLineThatIsStuckHoldsUpNoPop) {
  tKeptLines kept;
  tOwnTrace trace(sticky);
  tOwnTrace other(kept);
  trace.configure("--mutex on");
  trace.pushConfiguration();
  tStuckThread stuck(sticky, [&trace] {
    trace.putPrefix("test", tSSVersion(), 1, "file", 100, tTrace::kTraceLine).put("stuck").endl();
  });
  std::future<void> const pop =
      std::async(std::launch::async, [&trace] { trace.popConfiguration(); });
  bool const isOver = pop.wait_for(std::chrono::seconds(5)) == std::future_status::ready;
  std::string const inquired = isOver ? inquiredText(other) : "";
  stuck.letGo();
  EXPECT_TRUE(isOver);
  EXPECT_NE(inquired, "");
  EXPECT_NE(events.read().find("the line mutex is not switched: " + nameOf(sticky.thread)),
            std::string::npos)
      << events.read();
}

TEST_F(StuckPut, AListOfOptionsWaitsOnce) {
  tOwnTrace trace(sticky);
  trace.configure("--mutex on");
  tStuckThread stuck(sticky, [&trace] {
    trace.putPrefix("test", tSSVersion(), 1, "file", 100, tTrace::kTraceLine).put("stuck").endl();
  });
  std::string filters;
  for (int count = 0; count < 40; ++count) filters += "--filter verbosity>=1 ";
  std::future<void> const configuration =
      std::async(std::launch::async, [&] { trace.configure(filters.c_str()); });
  bool const isOver = configuration.wait_for(std::chrono::seconds(2)) == std::future_status::ready;
  stuck.letGo();
  EXPECT_TRUE(isOver);
}

namespace {

// The performance counter stands still, or runs backwards, while time passes.
class StuckPutWithoutCounter : public StuckPut, public testing::WithParamInterface<i32> {
 protected:
  StuckPutWithoutCounter() { ntoshost::setCounterRate(GetParam()); }
};

constexpr i32 kStandsStill = 0;
constexpr i32 kRunsBackwards = -i32{tHurriedTime::kRate};

}  // namespace

TEST_P(StuckPutWithoutCounter, ASwitchIsGivenUp) {
  tKeptLines next;
  tOwnTrace trace(sticky);
  tStuckThread stuck(trace, sticky);
  EXPECT_EQ(trace.setDestination(next), &sticky);
}

TEST_P(StuckPutWithoutCounter, AConfigurationIsGivenUp) {
  tKeptLines next;
  sticky.sticksToSwitches = true;
  tOwnTrace trace(sticky);
  tStuckThread stuck(sticky, [&] { trace.setDestination(next); });
  trace.configure("--timestamp on");
  EXPECT_EQ(trace.timeStampIsEnabled(), 0u);
}

TEST_P(StuckPutWithoutCounter, ASwitchOfTheMutexIsGivenUp) {
  tOwnTrace trace(sticky);
  trace.configure("--mutex on");
  tStuckThread stuck(sticky, [&trace] {
    trace.putPrefix("test", tSSVersion(), 1, "file", 100, tTrace::kTraceLine).put("stuck").endl();
  });
  trace.disableMutex();
  EXPECT_EQ(trace.mutexIsEnabled(), 1u);
}

INSTANTIATE_TEST_SUITE_P(Any, StuckPutWithoutCounter,
                         testing::Values(kStandsStill, kRunsBackwards));

TEST_F(StuckPut, TheModuleLeavesADestinationAlone) {
  tOwnTrace trace(sticky);
  tStuckDestination* place = &sticky;
  {
    tStuckThread stuck(trace, sticky);
    EXPECT_FALSE(mayEnd(sticky));
    destroyAtEnd(place);
    EXPECT_EQ(place, &sticky);
  }
  EXPECT_TRUE(mayEnd(sticky));
}
