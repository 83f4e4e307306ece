// A stream that several threads configure, and that others write into meanwhile.

#include <atomic>
#include <chrono>
#include <future>
#include <thread>
#include <vector>

#include "config/options/savedSettings.h"
#include "keptLines.h"
#include "oxdiagk/tAssertConfiguration.h"
#include "oxdiagk/tCTFTraceDestination.h"
#include "oxdiagk/tFileTraceDestination.h"
#include "oxdiagk/tTraceFilter.h"
#include "startedModules.h"

namespace {

using namespace nOXDIAG100;

constexpr int kThreadCount = 4;
constexpr auto kAWhile = std::chrono::milliseconds(50);
constexpr auto kLongEnough = std::chrono::seconds(30);

// Counts texts, of any number of threads at once.
class tCountedTexts : public tKeptLines {
 public:
  iTraceDestination& put(char const*) override {
    ++count;
    return *this;
  }
  iTraceDestination& put(char const*, unsigned int) override {
    ++count;
    return *this;
  }

  std::atomic<u64> count = 0;
};

// Stops once in its put or its open, until it is told to go on.
class tStoppingDestination : public tCountedTexts {
 public:
  using tCountedTexts::put;
  iTraceDestination& put(char const* text, unsigned int length) override {
    ++within;
    if (stopsInPut.exchange(false)) stop();
    tCountedTexts::put(text, length);
    --within;
    return *this;
  }
  u32 open() override {
    if (stopsInOpen.exchange(false)) stop();
    return 1;
  }
  void close() override { closedWithin += within; }

  void waitUntilStopped() { stopped.get_future().wait(); }
  void goOn() { mayGoOn.set_value(); }

  std::atomic<bool> stopsInPut = false;
  std::atomic<bool> stopsInOpen = false;
  std::atomic<int> within = 0;
  std::atomic<int> closedWithin = 0;

 private:
  void stop() {
    stopped.set_value();
    mayGoOn.get_future().wait();
  }

  std::promise<void> stopped;
  std::promise<void> mayGoOn;
};

void putLine(tTrace& trace) {
  trace.putPrefix("test", tSSVersion(), 1, "file", 100, tTrace::kTraceLine).put("line").endl();
}

template <class Work>
void configureInThreads(Work work) {
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreadCount; ++thread) threads.emplace_back(work, thread);
  for (std::thread& thread : threads) thread.join();
}

template <class Work>
std::future<void> start(Work work) {
  return std::async(std::launch::async, work);
}

// An object whose text is longer each time, as often as it is told.
struct tGrowing {
  void inquire(char* buffer, unsigned int size, unsigned int* needed) {
    if (buffer != nullptr && growths > 0) {
      --growths;
      ++length;
    }
    for (unsigned int index = 0; index < size; ++index)
      buffer[index] = index + 1 < length ? 'x' : 0;
    if (size != 0) buffer[size - 1] = 0;
    if (needed != nullptr) *needed = length;
  }

  int growths;
  unsigned int length = 5;
};

}  // namespace

TEST(ConfiguringThreads, ADestinationIsClosedWhenNobodyIsWithin) {
  tStoppingDestination former;
  tKeptLines next;
  tOwnTrace trace(former);
  former.stopsInPut = true;
  std::future<void> const writer = start([&] { putLine(trace); });
  former.waitUntilStopped();
  std::future<void> const switcher = start([&] { trace.setDestination(next); });
  EXPECT_EQ(switcher.wait_for(kAWhile), std::future_status::timeout);
  former.goOn();
  EXPECT_EQ(switcher.wait_for(kLongEnough), std::future_status::ready);
  EXPECT_EQ(former.closedWithin, 0);
  writer.wait();
  putLine(trace);
  EXPECT_EQ(next.pieces.size(), 1u);
}

TEST(ConfiguringThreads, LinesGoOnWhileADestinationIsOpenedAndAreLost) {
  tKeptLines former;
  tStoppingDestination next;
  tOwnTrace trace(former);
  next.stopsInOpen = true;
  std::future<void> const switcher = start([&] { trace.setDestination(next); });
  next.waitUntilStopped();
  size_t const before = former.pieces.size();
  EXPECT_EQ(start([&] { putLine(trace); }).wait_for(kLongEnough), std::future_status::ready);
  EXPECT_EQ(former.pieces.size(), before);
  EXPECT_EQ(next.count, 0u);
  next.goOn();
  switcher.wait();
  putLine(trace);
  EXPECT_EQ(next.count, 1u);
}

TEST(ConfiguringThreads, ConfigurationsWaitForEachOther) {
  tKeptLines former;
  tStoppingDestination next;
  tOwnTrace trace(former);
  next.stopsInOpen = true;
  std::future<void> const switcher = start([&] { trace.setDestination(next); });
  next.waitUntilStopped();
  std::future<void> const other = start([&] { trace.configure("--timestamp on"); });
  EXPECT_EQ(other.wait_for(kAWhile), std::future_status::timeout);
  EXPECT_EQ(trace.timeStampIsEnabled(), 0u);
  next.goOn();
  EXPECT_EQ(other.wait_for(kLongEnough), std::future_status::ready);
  EXPECT_EQ(trace.timeStampIsEnabled(), 1u);
}

TEST(ConfiguringThreads, ACaptureGoesWhileThreadsWrite) {
  tTrace& trace = tTrace::getInstance();
  std::atomic<bool> isOver = false;
  std::vector<std::thread> writers;
  ntoshost::setDebugPrintSink([](void*, char const*, size_t) {}, nullptr);
  for (int index = 0; index < kThreadCount; ++index) {
    writers.emplace_back([&] {
      while (!isOver) putLine(trace);
    });
  }
  for (int round = 0; round < 200; ++round) {
    char text[256];
    i32 position = 0;
    tCTFTraceDestination capture(text, position, sizeof(text), nullptr);
    trace.setDestination(capture);
    EXPECT_EQ(trace.getDestination(), &capture);
  }
  isOver = true;
  for (std::thread& writer : writers) writer.join();
  ntoshost::setDebugPrintSink(nullptr, nullptr);
}

TEST(ConfiguringThreads, RemovedTermsAreReleasedInTheEnd) {
  tCountedTexts kept;
  tOwnTrace trace(kept);
  u64 const before = ntoshost::outstandingBlocks();
  std::atomic<bool> isOver = false;
  std::vector<std::thread> writers;
  for (int index = 0; index < kThreadCount; ++index) {
    writers.emplace_back([&] {
      while (!isOver) {
        trace.putPrefix("nobody", tSSVersion(), 1, "file", 50, tTrace::kTraceLine).endl();
      }
    });
  }
  for (int round = 0; round < 500; ++round) {
    trace.configure("--filter \"compname==test && filename!=file || compname==other\"");
    trace.configure("--compname ==third --filename");
  }
  isOver = true;
  for (std::thread& writer : writers) writer.join();
  trace.configure("--filter verbosity>=100");
  EXPECT_EQ(ntoshost::outstandingBlocks(), before);
}

TEST(ConfiguringThreads, EveryPushOfEveryThreadIsKept) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  u64 const before = ntoshost::outstandingBlocks();
  configureInThreads([&](int) {
    for (int round = 0; round < 50; ++round) trace.pushConfiguration();
  });
  // The array that grew is one more.
  EXPECT_EQ(ntoshost::outstandingBlocks(), before + kThreadCount * 50 + 1);
  configureInThreads([&](int) {
    for (int round = 0; round < 50; ++round) trace.popConfiguration();
  });
  EXPECT_EQ(ntoshost::outstandingBlocks(), before + 1);
}

TEST(ConfiguringThreads, CategoriesThatThreadsMakeAtOnceAreAllThere) {
  tAssertConfiguration& contracts = tAssertConfiguration::getInstance();
  configureInThreads([&](int thread) {
    for (int round = 0; round < 100; ++round) {
      std::string const name = std::to_string(round) + "/" + std::to_string(thread);
      contracts.configure(("--category " + name + " --checks off").c_str());
      EXPECT_TRUE(contracts.loopInvariantsAreEnabled(name.c_str()));
      EXPECT_FALSE(contracts.checksAreEnabled(name.c_str()));
    }
  });
  for (int round = 0; round < 100 * kThreadCount; ++round) {
    std::string const name =
        std::to_string(round / kThreadCount) + "/" + std::to_string(round % kThreadCount);
    EXPECT_TRUE(contracts.exceptionsAreEnabled(name.c_str())) << name;
  }
  contracts.configure("--category default");
}

TEST(ConfiguringThreads, ThoseWhoAskFirstAtOnceGetTheSameDestination) {
  std::atomic<int> ready = 0;
  std::array<iTraceDestination*, kThreadCount> found = {};
  configureInThreads([&](int thread) {
    ++ready;
    while (ready < kThreadCount) std::this_thread::yield();
    found[static_cast<size_t>(thread)] = tFileTraceDestination::getInstance();
  });
  for (iTraceDestination* const each : found) {
    EXPECT_NE(each, nullptr);
    EXPECT_EQ(each, found[0]);
  }
}

TEST(ConfiguringThreads, ATextThatGrewIsTakenAnew) {
  tGrowing growing{3};
  char* const text = copySettings(growing, kMemScratch);
  EXPECT_STREQ(text, "xxxxxxx");
  _memDelete(text);
}

TEST(ConfiguringThreads, ATextThatNeverFitsIsCut) {
  tGrowing growing{1'000'000};
  char* const text = copySettings(growing, kMemScratch);
  EXPECT_EQ(std::string(text).size() + 2, growing.length);
  _memDelete(text);
}
