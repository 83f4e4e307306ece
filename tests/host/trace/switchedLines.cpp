// Lines of threads with the line mutex on, while destinations are switched beside them.

#include <atomic>
#include <map>
#include <thread>

#include "keptLines.h"
#include "oxdiagk/tVEXTraceDestination.h"
#include "startedModules.h"

namespace {

using namespace nOXDIAG100;

constexpr int kWriters = 4;
constexpr int kSwitches = 300;
constexpr char kAnnouncement[] = "Switching trace destination to kept lines\n";

void putLine(tTrace& trace, int writer, int line) {
  trace.putPrefix("test", tSSVersion(), 1, "file", 100, tTrace::kTraceLine);
  trace.put("writer ").put(writer, 10).put(" line ").put(line, 10).put(" ");
  for (int index = 0; index < 300; ++index) trace.put(static_cast<char>('a' + writer));
  trace.endl();
}

void putHidden(tTrace& trace) {
  trace.putPrefix("test", tSSVersion(), 1, "file", 1, tTrace::kTraceLine);
  for (int index = 0; index < 10; ++index) trace.put("HIDDEN");
  trace.endl();
}

std::string expectedLine(int writer, int line) {
  return "writer " + std::to_string(writer) + " line " + std::to_string(line) + " " +
         std::string(300, static_cast<char>('a' + writer)) + "\n";
}

std::map<std::string, int> countLines(std::initializer_list<tKeptLines const*> places) {
  std::map<std::string, int> counts;
  for (tKeptLines const* const place : places) {
    std::string const text = place->text();
    for (size_t begin = 0; begin < text.size();) {
      size_t const end = text.find('\n', begin) + 1;
      ++counts[text.substr(begin, end - begin)];
      begin = end == 0 ? text.size() : end;
    }
  }
  return counts;
}

// Writers of one or more streams while `work` runs; returns how many lines each has written.
class tWriters {
 public:
  explicit tWriters(std::initializer_list<tTrace*> streams) {
    std::vector<tTrace*> const all(streams);
    for (int writer = 0; writer < kWriters; ++writer) {
      tTrace& trace = *all[static_cast<size_t>(writer) % all.size()];
      threads.emplace_back([this, writer, &trace] {
        for (int line = 0; !isOver; ++line) {
          putLine(trace, writer, line);
          putHidden(trace);
          counts[writer] = line + 1;
        }
      });
    }
  }

  void end() {
    isOver = true;
    for (std::thread& thread : threads) thread.join();
  }

  void expectAllIn(std::map<std::string, int>& lines) const {
    size_t expected = 0;
    for (int writer = 0; writer < kWriters; ++writer) {
      for (int line = 0; line < counts[writer]; ++line, ++expected) {
        ASSERT_EQ(lines[expectedLine(writer, line)], 1) << "writer " << writer << " line " << line;
      }
    }
    lines.erase(kAnnouncement);
    EXPECT_EQ(lines.size(), expected) << "there is a line that nobody has written";
  }

 private:
  std::atomic<bool> isOver = false;
  std::atomic<int> counts[kWriters] = {};
  std::vector<std::thread> threads;
};

constexpr char kLocked[] =
    "--mutex on --prefixwidth 0 --compname off --linenumber off --filename off";

}  // namespace

TEST(SwitchedLines, EveryLineIsThereWholeAndOnce) {
  tKeptLines first;
  tKeptLines second;
  tOwnTrace trace(first);
  trace.configure(kLocked);
  tWriters writers({&trace});
  for (int index = 0; index < kSwitches; ++index) {
    trace.setDestination(index % 2 == 0 ? second : first);
  }
  writers.end();
  std::map<std::string, int> lines = countLines({&first, &second});
  EXPECT_EQ(lines[kAnnouncement], kSwitches);
  writers.expectAllIn(lines);
}

TEST(SwitchedLines, FailedSwitchesLoseNoLineEither) {
  tKeptLines first;
  tKeptLines second;
  tOwnTrace trace(first);
  trace.configure(kLocked);
  second.failingOpens = kSwitches;
  tWriters writers({&trace});
  for (int index = 0; index < kSwitches; ++index) trace.setDestination(second);
  writers.end();
  std::map<std::string, int> lines = countLines({&first, &second});
  EXPECT_EQ(lines["Trace destination couldn't be opened!\n"], kSwitches);
  EXPECT_EQ(lines["Trace destination remains unchanged.\n"], kSwitches);
  lines.erase("Trace destination couldn't be opened!\n");
  lines.erase("Trace destination remains unchanged.\n");
  writers.expectAllIn(lines);
}

TEST(SwitchedLines, LinesOfTwoStreamsWithOneDestinationAreAllThere) {
  tKeptLines shared;
  tKeptLines other;
  tOwnTrace first(shared);
  tOwnTrace second(shared);
  first.configure(kLocked);
  second.configure(kLocked);
  tWriters writers({&first, &second});
  for (int index = 0; index < kSwitches; ++index) {
    second.setDestination(index % 3 == 0 ? other : shared);
  }
  writers.end();
  std::map<std::string, int> lines = countLines({&shared, &other});
  EXPECT_EQ(lines[kAnnouncement], kSwitches);
  writers.expectAllIn(lines);
}

TEST(SwitchedLines, ConfigurationsOfEveryKindLoseNoLine) {
  tKeptLines first;
  tOwnTrace trace(first);
  trace.configure(kLocked);
  tWriters writers({&trace});
  for (int index = 0; index < 30; ++index) {
    trace.pushConfiguration();
    trace.configure("--timestamp off --filter verbosity>=100 --mutex on");
    (void)inquiredText(trace);
    trace.setDestination(first);
  }
  writers.end();
  std::map<std::string, int> lines = countLines({&first});
  EXPECT_EQ(lines[kAnnouncement], 30);
  writers.expectAllIn(lines);
}
