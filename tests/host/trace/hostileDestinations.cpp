// Destinations that end within their own put.

#include <gtest/gtest.h>

#include <string>

#include "keptLines.h"
#include "newEvents.h"
#include "ntoshost/debugPrint.h"
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
