// Streams, destinations and captures that come and go beside threads that write.

#include <atomic>
#include <memory>
#include <thread>

#include "keptLines.h"
#include "ntos/driveFolder.h"
#include "oxdiagk/tCTFTraceDestination.h"
#include "oxdiagk/tFileTraceDestination.h"
#include "oxdiagk/tSerialTraceDestination.h"
#include "oxdiagk/tVEXTraceDestination.h"
#include "startedModules.h"
#include "vexk/serialSupport.h"

namespace {

using namespace nOXDIAG100;

// Counts what arrives, knows whether it is open, and what happened while it was not, or not alone.
class tWatchedDestination : public iTraceDestination {
 public:
  ~tWatchedDestination() override { leaveStream(); }

  iTraceDestination& put(char const* text) override {
    return put(text, static_cast<unsigned int>(strlen(text)));
  }
  iTraceDestination& put(char const*, unsigned int) override {
    ++within;
    if (!isOpen) ++faults;
    ++texts;
    --within;
    return *this;
  }
  void configure(int, char** const) override { expectNobody(); }
  char* inquire(char* buffer, unsigned int size, unsigned int* required) override {
    return inquireText(" --destination watched", buffer, size, required);
  }
  u32 open() override {
    expectNobody();
    if (isOpen.exchange(true)) ++faults;
    return 1;
  }
  void close() override {
    expectNobody();
    if (!isOpen.exchange(false)) ++faults;
  }
  char const* getDescription() const override { return "watched"; }

  std::atomic<bool> isOpen = false;
  std::atomic<int> within = 0;
  std::atomic<int> faults = 0;
  std::atomic<u64> texts = 0;

 private:
  void expectNobody() {
    if (within != 0) ++faults;
  }
};

void putLine(tTrace& trace) {
  trace.putPrefix("test", tSSVersion(), 1, "file", 100, tTrace::kTraceLine).put("line").endl();
}

// Threads that do their work over and over, until the object goes.
class tBusyThreads {
 public:
  template <class... Works>
  explicit tBusyThreads(Works... works) {
    (start(works), ...);
  }
  ~tBusyThreads() { end(); }

  void end() {
    isOver = true;
    for (std::thread& thread : threads) thread.join();
    threads.clear();
  }

 private:
  template <class Work>
  void start(Work work) {
    threads.emplace_back([this, work] {
      while (!isOver) work();
    });
  }

  std::atomic<bool> isOver = false;
  std::vector<std::thread> threads;
};

class SharedDestinationThreads : public testing::Test {
 protected:
  SharedDestinationThreads() {
    ntoshost::setDebugPrintSink([](void*, char const*, size_t) {}, nullptr);
  }
  ~SharedDestinationThreads() override {
    tSerialTraceDestination::getInstance()->close();
    tFileTraceDestination::getInstance()->close();
    EXPECT_EQ(ntoshost::outstandingHandles(), 0u);
    ntoshost::setDebugPrintSink(nullptr, nullptr);
  }

  tDriveFolder drive;
  tSerialFile port;
};

}  // namespace

TEST_F(SharedDestinationThreads, IsOpenWhenATextOfAnyStreamArrives) {
  tWatchedDestination shared;
  tWatchedDestination other;
  {
    tOwnTrace first(tVEXTraceDestination::getInstance());
    tOwnTrace second(tVEXTraceDestination::getInstance());
    first.configure("--mutex on");
    tBusyThreads const busy([&] { putLine(first); }, [&] { putLine(second); });
    for (int round = 0; round < 300; ++round) {
      first.setDestination(shared);
      second.setDestination(round % 2 == 0 ? shared : other);
      first.setDestination(other);
      second.setDestination(shared);
      first.setDestination(shared);
    }
  }
  EXPECT_EQ(shared.faults, 0);
  EXPECT_EQ(other.faults, 0);
  EXPECT_FALSE(shared.isOpen);
  EXPECT_FALSE(other.isOpen);
}

TEST_F(SharedDestinationThreads, SwitchBesideEachOtherAndLoseNoTextOfTheOneThatStays) {
  tWatchedDestination shared;
  tOwnTrace staying(tVEXTraceDestination::getInstance());
  staying.setDestination(shared);
  u64 lines = 0;
  {
    tOwnTrace moving(tVEXTraceDestination::getInstance());
    moving.disable();
    tBusyThreads const busy([&] {
      moving.setDestination(shared);
      moving.setDestination(tVEXTraceDestination::getInstance());
    });
    for (; lines < 20'000; ++lines) putLine(staying);
  }
  EXPECT_EQ(shared.texts, lines);
  EXPECT_EQ(shared.faults, 0);
}

TEST_F(SharedDestinationThreads, ComeAndGoWithTheirStreams) {
  tWatchedDestination shared;
  {
    tOwnTrace staying(tVEXTraceDestination::getInstance());
    staying.setDestination(shared);
    tBusyThreads const busy([&] { putLine(staying); },
                            [&] {
                              tOwnTrace passing(tVEXTraceDestination::getInstance());
                              passing.setDestination(shared);
                              putLine(passing);
                            },
                            [&] {
                              tOwnTrace passing(tVEXTraceDestination::getInstance());
                              passing.setDestination(shared);
                              passing.setDestination(tVEXTraceDestination::getInstance());
                            });
    for (int round = 0; round < 300; ++round) staying.setDestination(shared);
  }
  EXPECT_EQ(shared.faults, 0);
  EXPECT_FALSE(shared.isOpen);
}

TEST_F(SharedDestinationThreads, GoWhileTwoStreamsWriteThere) {
  tOwnTrace first(tVEXTraceDestination::getInstance());
  tOwnTrace second(tVEXTraceDestination::getInstance());
  tBusyThreads const busy([&] { putLine(first); }, [&] { putLine(second); },
                          [&] { second.configure("--destination vex --timestamp on"); });
  for (int round = 0; round < 300; ++round) {
    auto const going = std::make_unique<tWatchedDestination>();
    first.setDestination(*going);
    second.setDestination(*going);
    EXPECT_EQ(going->faults, 0);
  }
}

TEST_F(SharedDestinationThreads, CapturesGoWhileTwoStreamsWriteThere) {
  tOwnTrace second(tVEXTraceDestination::getInstance());
  tTrace& ofModule = tTrace::getInstance();
  tBusyThreads const busy([&] { putLine(ofModule); }, [&] { putLine(second); });
  for (int round = 0; round < 300; ++round) {
    auto const text = std::make_unique<char[]>(256);
    i32 position = 0;
    tCTFTraceDestination capture(text.get(), position, 256, nullptr);
    ofModule.setDestination(capture);
    second.setDestination(capture);
  }
}

TEST_F(SharedDestinationThreads, FileAndPortOfTheModuleServePrivateStreamsToo) {
  tTrace& ofModule = tTrace::getInstance();
  tOwnTrace second(tVEXTraceDestination::getInstance());
  tBusyThreads busy([&] { putLine(ofModule); }, [&] { putLine(second); });
  for (int round = 0; round < 100; ++round) {
    ofModule.configure("--destination file C:/one.out");
    second.configure("--destination file C:/one.out");
    ofModule.configure("--destination serial 9600");
    second.configure("--destination serial 115200");
    second.configure("--destination vex");
  }
  busy.end();
  size_t const before = port.content().size();
  ofModule.put("still sent").endl();
  EXPECT_NE(port.content().find("still sent", before), std::string::npos);
  ofModule.configure("--destination vex");
}

TEST_F(SharedDestinationThreads, FileOfOneStreamStaysWhenAnotherLeavesIt) {
  tOwnTrace first(tVEXTraceDestination::getInstance());
  tOwnTrace second(tVEXTraceDestination::getInstance());
  first.configure("--destination file C:/one.out");
  second.configure("--destination file");
  second.configure("--destination vex");
  first.put("still written").endl();
  EXPECT_NE(drive.read("one.out").find("still written"), std::string::npos);
  first.configure("--destination vex");
}

TEST_F(SharedDestinationThreads, DiskThatIsFullHoldsUpNobody) {
  tOwnTrace first(tVEXTraceDestination::getInstance());
  tOwnTrace second(tVEXTraceDestination::getInstance());
  first.configure("--destination file C:/one.out");
  second.configure("--destination file");
  ntoshost::failFrom(ntoshost::kFaultFileWrite, 1);
  {
    tBusyThreads const busy([&] { putLine(first); }, [&] { putLine(second); });
    for (int round = 0; round < 50; ++round) {
      first.configure("--destination vex");
      first.configure("--destination file C:/one.out");
    }
  }
  ntoshost::clearFaults();
  first.put("written again").endl();
  EXPECT_NE(drive.read("one.out").find("written again"), std::string::npos);
  first.configure("--destination vex");
  second.configure("--destination vex");
}
