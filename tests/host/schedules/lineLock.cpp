// Lines with the line mutex, and switches of the mutex, in every order.

#include <algorithm>
#include <string>

#include "oxdiagk/tVEXTraceDestination.h"
#include "schedules/tExplorer.h"
#include "schedules/tWatchedDestination.h"
#include "support/recordingDestination.h"
#include "trace/startedModules.h"

using nOXDIAG100::tVEXTraceDestination;

namespace {

constexpr unsigned kLength = 300;  // two pieces

class tLockedStream {
 public:
  tLockedStream() { trace.enableMutex(); }
  ~tLockedStream() { trace.setDestination(tVEXTraceDestination::getInstance()); }
  tLockedStream(tLockedStream const&) = delete;
  tLockedStream& operator=(tLockedStream const&) = delete;

  void write(char letter) { writeLine(trace, std::string(kLength, letter)); }

  // All text behind the prefixes, with one character for each run of the same.
  std::string getRuns() const {
    std::string runs;
    for (std::string const& piece : fate.pieces) {
      size_t const end = piece.find("] ");
      runs += end == std::string::npos ? piece : piece.substr(end + 2);
    }
    runs.erase(std::unique(runs.begin(), runs.end()), runs.end());
    return runs;
  }

  tWatchedFate fate;
  tWatchedDestination destination{fate};
  tPrivateTrace trace{destination};
};

class tTwoWriters {
 public:
  static constexpr unsigned kThreads = 2;

  void run(unsigned thread) { stream.write(thread == 0 ? 'a' : 'b'); }
  void finish() {
    std::string const runs = stream.getRuns();
    EXPECT_TRUE(runs == "a\nb\n" || runs == "b\na\n") << runs;
  }

 private:
  tLockedStream stream;
};

// One who turns the mutex off and on again beside a line.
class tTurnedBesideALine {
 public:
  static constexpr unsigned kThreads = 2;

  void run(unsigned thread) {
    if (thread == 0) return stream.write('a');
    stream.trace.disableMutex();
    stream.trace.enableMutex();
  }
  void finish() {
    EXPECT_EQ(stream.getRuns(), "a\n");
    EXPECT_EQ(stream.trace.mutexIsEnabled(), 1u);
    stream.write('c');
    EXPECT_EQ(stream.getRuns(), "a\nc\n");
  }

 private:
  tLockedStream stream;
};

// A line within a line, by the put of the first.
class tLineWithinALine {
 public:
  static constexpr unsigned kThreads = 2;

  tLineWithinALine() {
    stream.destination.onPut = [this] {
      if (++depth == 1) writeLine(stream.trace, "c");
      --depth;
    };
  }
  void run(unsigned thread) { stream.write(thread == 0 ? 'a' : 'b'); }
  void finish() {
    for (std::string const& piece : stream.fate.pieces) {
      EXPECT_EQ(piece.find('a') != std::string::npos && piece.find('b') != std::string::npos,
                false);
    }
    stream.destination.onPut = nullptr;
  }

 private:
  tLockedStream stream;
  int depth = 0;
};

}  // namespace

TEST(LineSchedules, LinesOfTwoThreadsDoNotMix) {
  explore<tTwoWriters>("lineTwo", {2, 500});
}

TEST(LineSchedules, TurningTheMutexWaitsForTheLine) {
  explore<tTurnedBesideALine>("lineTurned", {1, 500});
}

TEST(LineSchedules, ALineWithinALineStaysWithItsThread) {
  explore<tLineWithinALine>("lineWithin", {1, 500});
}
