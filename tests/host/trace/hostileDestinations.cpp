// Destinations that end within their own put.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <thread>

#include "keptLines.h"
#include "newEvents.h"
#include "ntoshost/debugPrint.h"
#include "oxdiagk/tFileTraceDestination.h"
#include "oxdiagk/tVEXTraceDestination.h"
#include "racingThreads.h"
#include "startedModules.h"

namespace {

using namespace nOXDIAG100;

// Ends in the put of a text with "end" in it.
class tMortalDestination final : public tKeptLines {
 public:
  explicit tMortalDestination(std::string& told) : fate(told) {}
  ~tMortalDestination() override {
    leaveStream();
    fate += "gone ";
  }

  iTraceDestination& put(char const* text, unsigned int length) override {
    bool const isEnd = std::string(text, length).find("end") != std::string::npos;
    fate += "put ";
    if (isEnd) delete this;
    return tVEXTraceDestination::getInstance();
  }
  void close() override { fate += "close "; }

 private:
  std::string& fate;
};

// Wants another stream to write to it too, from within its put.
class tGreedyDestination final : public tKeptLines {
 public:
  iTraceDestination& put(char const* text, unsigned int length) override {
    tKeptLines::put(text, length);
    wanted->setDestination(*this);
    return *this;
  }

  tTrace* wanted = nullptr;
};

// Its settings are long, but when it is asked for their length first.
class tGrowingSettings final : public tKeptLines {
 public:
  char* inquire(char* buffer, unsigned int size, unsigned int* required) override {
    std::string const text = " --destination kept " + std::string(growth, 'x');
    growth = 5000;
    return inquireText(text.c_str(), buffer, size, required);
  }

 private:
  size_t growth = 0;
};

// Ends when it is given its settings back.
class tUnsettledDestination final : public tKeptLines {
 public:
  ~tUnsettledDestination() override { leaveStream(); }
  void configure(int, char** const) override { delete this; }
};

// Opens the next one within its own opening, and the last one configures the file.
class tNestedDestination final : public tKeptLines {
 public:
  u32 open() override {
    if (next != nullptr) {
      stream->setDestination(*next);
    } else {
      stream->configure("--destination file C:/deep.out");
    }
    return tKeptLines::open();
  }

  tTrace* stream = nullptr;
  tNestedDestination* next = nullptr;
};

class EndWithinPut : public testing::Test {
 protected:
  EndWithinPut() {
    ntoshost::setDebugPrintSink(
        [](void* text, char const* piece, size_t length) {
          static_cast<std::string*>(text)->append(piece, length);
        },
        &printed);
  }
  ~EndWithinPut() override { ntoshost::setDebugPrintSink(nullptr, nullptr); }

  bool isAtDebugger(tTrace& trace) {
    return trace.getDestination() == &tVEXTraceDestination::getInstance();
  }

  std::string fate;
  std::string printed;
  tNewEvents events;
};

}  // namespace

TEST_F(EndWithinPut, SendsTheStreamToTheDebugger) {
  tOwnTrace trace(*new tMortalDestination(fate));
  trace.put("the end").endl();
  EXPECT_TRUE(isAtDebugger(trace));
  trace.put("behind").endl();
  EXPECT_NE(printed.find("behind\n"), std::string::npos);
  EXPECT_EQ(fate.substr(fate.size() - 5), "gone ");
  EXPECT_NE(fate.find("close gone "), std::string::npos);
}

TEST_F(EndWithinPut, IsNoStuckThread) {
  tOwnTrace trace(*new tMortalDestination(fate));
  trace.put("the end").endl();
  EXPECT_EQ(events.read(), "");
}

TEST_F(EndWithinPut, LeavesTheLineMutexFree) {
  tOwnTrace trace(*new tMortalDestination(fate));
  trace.enableMutex();
  trace.putPrefix("test", tSSVersion(), 1, "file", 100, tTrace::kTraceLine).put("the end").endl();
  EXPECT_TRUE(isAtDebugger(trace));
  runAtOnce(1, [&] {
    trace.putPrefix("test", tSSVersion(), 1, "file", 100, tTrace::kTraceLine).put("other").endl();
  });
  EXPECT_NE(printed.find("other\n"), std::string::npos);
  trace.disableMutex();
}

TEST_F(EndWithinPut, TakesAllItsStreamsAlong) {
  auto* const mortal = new tMortalDestination(fate);
  tOwnTrace first(*mortal);
  tOwnTrace second(*mortal);
  first.put("the end").endl();
  EXPECT_TRUE(isAtDebugger(first));
  EXPECT_TRUE(isAtDebugger(second));
  EXPECT_EQ(fate.substr(fate.size() - 5), "gone ");
}

// Of a text in several pieces the rest goes on where the stream is then.
TEST_F(EndWithinPut, SendsTheRestOfALongTextElsewhere) {
  tOwnTrace trace(*new tMortalDestination(fate));
  trace.put(("the end" + std::string(600, 'x')).c_str()).endl();
  EXPECT_NE(printed.find("xxx\n"), std::string::npos);
}

TEST(LiveStreams, GoInAnyOrder) {
  tKeptLines kept;
  tKeptLines other;
  auto first = std::make_unique<tOwnTrace>(kept);
  auto second = std::make_unique<tOwnTrace>(kept);
  tOwnTrace third(kept);
  first.reset();
  second.reset();
  EXPECT_EQ(third.setDestination(other), &kept);
  third.put("line").endl();
  EXPECT_EQ(other.text(), "line\n");
}

TEST(UnlockedLines, HiddenOnesOfAnotherThreadHideNothing) {
  for (int depth = 1; depth <= 3; ++depth) {
    tKeptLines kept;
    tOwnTrace trace(kept);
    trace.configure("--filter verbosity>=50");
    std::thread([&] {
      for (int line = 0; line < depth; ++line) {
        trace.putPrefix("test", tSSVersion(), 1, "file", 1, tTrace::kTraceLine).put("hidden");
      }
    }).join();
    trace.endl();
    trace.put("shown").endl();
    EXPECT_NE(kept.text().find("shown\n"), std::string::npos) << kept.text();
    EXPECT_EQ(kept.text().find("hidden"), std::string::npos);
  }
}

TEST(SwitchesFromPut, OfAnotherStreamToTheSameDestinationChangeNothing) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  tGreedyDestination greedy;
  greedy.wanted = &trace;
  tOwnTrace other(greedy);
  other.put("line").endl();
  EXPECT_EQ(trace.getDestination(), &kept);
  EXPECT_EQ(greedy.text(), "line\n");
  EXPECT_EQ(kept.events, "");
}

// It could not be opened again as it was.
TEST(GrowingSettings, KeepTheirDestination) {
  tGrowingSettings growing;
  tKeptLines kept;
  tOwnTrace trace(growing);
  trace.setDestination(kept);
  EXPECT_EQ(trace.getDestination(), &growing);
  EXPECT_EQ(kept.events, "");
  EXPECT_EQ(growing.events, "");
}

TEST_F(EndWithinPut, WhoEndsAsItIsConfiguredLeavesItsStreamToTheDebugger) {
  auto* const unsettled = new tUnsettledDestination;
  tOwnTrace trace(*unsettled);
  tKeptLines next;
  next.failingOpens = 1;
  trace.setDestination(next);
  EXPECT_TRUE(isAtDebugger(trace));
  EXPECT_EQ(next.events, "open-fails ");
}

TEST(SwitchesWithinOpen, OfTheFifthDepthConfigureNoDestination) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  tNestedDestination nested[4];
  for (int depth = 0; depth < 4; ++depth) {
    nested[depth].stream = &trace;
    nested[depth].next = depth < 3 ? &nested[depth + 1] : nullptr;
  }
  trace.setDestination(nested[0]);
  EXPECT_STREQ(tFileTraceDestination::getInstance()->getDescription(), "File = C:/DebugTrace.out");
  trace.setDestination(kept);
  EXPECT_EQ(trace.getDestination(), &kept);
}
