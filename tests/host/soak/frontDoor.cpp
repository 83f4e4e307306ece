// Eight threads at the front door for as long as they are told: handles, configurations of both
// objects, requests of user mode, lines, contracts and destinations in random order, all at once.
// What is looked for is what the sanitizers and the executive find. OXDIAG_SOAK_SECONDS is the
// time, OXDIAG_SOAK_SEED the first number of the random ones.

#include <array>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <iterator>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "ntos/driveFolder.h"
#include "oxdiagk/assertion.h"
#include "oxdiagk/instanceRegistry.h"
#include "oxdiagk/tAssertConfiguration.h"
#include "oxdiagk/tBlockTracer.h"
#include "oxdiagk/tCTFTraceDestination.h"
#include "oxdiagk/tStatus2.h"
#include "oxdiagk/tTrace.h"
#include "support/tunnelRecords.h"
#include "trace/startedModules.h"
#include "trace/tRaisedIrql.h"

namespace {

using namespace nOXDIAG100;

constexpr u64 kThreads = 8;
constexpr int kSharedHandles = 4;
constexpr u64 kDriveBytes = 64 << 20;

constexpr char const* kTraceOptions[] = {
    "--on",
    "--off --on",
    "--mutex on",
    "--mutex off",
    "--compname on --compver off --linenumber --filename off --filepath on",
    "--timestamp on --timedelta on --threadid on --verbosity on --indent off --truncation off",
    "--timestamp off --timedelta off --threadid off --verbosity off --indent on --truncation on",
    "--prefixwidth 0",
    "--prefixwidth 1 --filename on",
    "--prefixwidth 50 --compname on --linenumber on --filename on --filepath off",
    "--filter verbosity>=100",
    "--filter \"compname==soak && verbosity>=50 || linenumber<500 && filename!=other.cpp\"",
    "--filter \"threadid!=0 || compver==1.0.0f7\"",
    "--filter",
    "--compname ==soak --verbosity >=20 --threadid",
    "--destination vex",
    "--destination file C:/soak.out append",
    "--destination file C:/soak.out overwrite --timestamp on",
    "--destination file C:/other.out",
    "--destination file Q:/missing/soak.out",
    "--calibrate",
    "--mutex-kernel-token 5:0",
};

constexpr char const* kAssertOptions[] = {
    "--category default --break off --checks",
    "--category rack --preconditions off",
    "--category rack --preconditions on --exceptions off --break",
    "--category \"a name\" --loopinvariants off",
    "--category statusFatal --postconditions off --classinvariants off",
    "--category",
    "--checks off",
};

constexpr char const* kNames[] = {"trace", "assert", "kernel/trace", "kernelassert", "nothing"};

u64 numberFrom(char const* variable, u64 otherwise) {
  char const* const text = std::getenv(variable);
  return text == nullptr ? otherwise : std::strtoull(text, nullptr, 10);
}

// What all threads share.
struct tShared {
  std::atomic<bool> isOver = false;
  std::array<std::atomic<u32>, kSharedHandles> handles = {};
  std::atomic<u64> printed = 0;
};

void countPrint(void* context, char const*, size_t) {
  ++static_cast<tShared*>(context)->printed;
}

// One thread's share of the work.
class tWorker {
 public:
  tWorker(tShared& shared, u64 seed) : shared(shared), random(seed) {}

  void run() {
    while (!shared.isOver) step();
  }

  // In the order of kActions.
  std::array<u64, 16> counts = {};

  using tAction = void (tWorker::*)();
  struct tNamedAction {
    char const* name;
    tAction action;
    u32 weight;
  };
  static tNamedAction const kActions[];

 private:
  u32 below(u32 limit) { return static_cast<u32>(random() % limit); }

  template <size_t count>
  char const* oneOf(char const* const (&texts)[count]) {
    return texts[below(count)];
  }

  // One that all know and that may be withdrawn at any moment.
  u32 anyHandle() { return shared.handles[below(kSharedHandles)]; }

  char const* options() { return below(3) == 0 ? oneOf(kAssertOptions) : oneOf(kTraceOptions); }

  size_t choose();
  void step();

  void exchangeHandle() {
    std::string name = oneOf(kNames);
    releaseInstance(shared.handles[below(kSharedHandles)].exchange(acquireInstance(name.data())));
  }

  void configureText() { configure(anyHandle(), options()); }

  void configureWords() {
    std::string words[] = {"--linenumber", below(2) == 0 ? "on" : ">=1", "--checks", "on"};
    char* list[] = {words[0].data(), words[1].data(), words[2].data(), words[3].data()};
    configure(anyHandle(), 4, list);
    configure(anyHandle());
  }

  void inquireText() {
    std::string buffer(1 + below(2000), 'x');
    unsigned int needed = 0;
    inquire(anyHandle(), buffer.data(), static_cast<unsigned int>(buffer.size()), &needed);
    bool const isTerminated = buffer.find('\0') != std::string::npos;
    EXPECT_EQ(isTerminated, needed != 0);
  }

  void push() { pushConfiguration(anyHandle()); }
  void pop() { popConfiguration(anyHandle()); }

  void traceLine() {
    tTrace& trace = tTrace::getInstance();
    trace.putPrefix("soak", tSSVersion(), __LINE__, "tests/soak.cpp", below(200),
                    tTrace::kTraceLine);
    trace.put("line ").put(below(1000), 16).put(' ').put(true).putf(" %u %s", below(9), "text");
    if (below(8) == 0) trace.put(std::string(300, 'l').c_str());
    if (below(8) == 0) trace.put("a\0b", 3);
    if (below(8) == 0) trace.put(this, 5, 4);
    trace.endl();
  }

  void traceBlock() {
    char name[] = "soak";
    i32 status = 0;
    tBlockTracer const block(name, tSSVersion(), __LINE__, name, 100, name, nullptr, &status,
                             tTrace::getInstance());
    tTrace::getInstance().put("within").putPrefixPrototype().endl();
  }

  void traceAtDispatch() {
    tRaisedIrql const raised(DISPATCH_LEVEL);
    traceLine();
  }

  void check() {
    char category[] = "rack";
    char fallback[] = "default";
    char text[] = "";
    evalRequire(category, text, tSSVersion(), __LINE__, text);
    evalCheck(fallback, text, tSSVersion(), __LINE__, text);
    tAssertConfiguration::getInstance().exceptionsAreEnabled("statusFatal");
    if (below(4) == 0) {
      notificationAction(category, category, tSSVersion(), __LINE__, category, fallback);
    }
  }

  void setSwitches() {
    tTrace& trace = tTrace::getInstance();
    below(2) == 0 ? trace.enableTimeStamp() : trace.disableTimeStamp();
    below(2) == 0 ? trace.enableMutex() : trace.disableMutex();
    trace.setMinPrefixWidth(below(100));
    trace.enable();
    tAssertConfiguration& contracts = tAssertConfiguration::getInstance();
    below(2) == 0 ? contracts.enableChecks("rack") : contracts.disableChecks("rack");
    below(2) == 0 ? contracts.enableBreakOnViolation("default")
                  : contracts.disableBreakOnViolation("default");
  }

  void request() {
    char buffer[64];
    u32 handle = kNoHandle;
    u32 needed = 0;
    char const* const name = oneOf(kNames);
    tTestRequest(anyHandle(), acquireRecord(&handle, name), textRecord(options()),
                 inquireRecord(buffer, below(sizeof(buffer) + 1), &needed), makeRecord(6),
                 makeRecord(3), makeRecord(7), makeRecord(99))
        .send();
    tTestRequest(handle, makeRecord(2)).send();
  }

  // Captures for a moment; the capture may be anybody's destination when it goes.
  void capture() {
    char text[512];
    i32 position = 0;
    tCTFTraceDestination destination(text, position, sizeof(text), nullptr);
    tTrace::getInstance().setDestination(destination);
    traceLine();
  }

  // Addresses where nothing is, and the largest lengths.
  void badRequest() {
    tTestRequest bad(anyHandle(), makeRecord(5, 16, 0xFFFFFFFF, 24), makeRecord(4, 8, 100),
                     makeRecord(5, 16, 64, 24), makeRecord(4, 0, 0xFFFFFFFF));
    bad.send();
  }

  tShared& shared;
  std::mt19937_64 random;
};

constexpr tWorker::tNamedAction tWorker::kActions[] = {
    {"handles", &tWorker::exchangeHandle, 6},
    {"configurations", &tWorker::configureText, 10},
    {"words", &tWorker::configureWords, 4},
    {"inquiries", &tWorker::inquireText, 6},
    {"pushes", &tWorker::push, 3},
    {"pops", &tWorker::pop, 4},
    {"lines", &tWorker::traceLine, 60},
    {"blocks", &tWorker::traceBlock, 6},
    {"lines at DISPATCH_LEVEL", &tWorker::traceAtDispatch, 4},
    {"checks", &tWorker::check, 20},
    {"switches", &tWorker::setSwitches, 4},
    {"requests", &tWorker::request, 6},
    {"bad requests", &tWorker::badRequest, 2},
    {"captures", &tWorker::capture, 2},
};

size_t tWorker::choose() {
  u32 total = 0;
  for (tNamedAction const& named : kActions) total += named.weight;
  u32 chosen = below(total);
  for (size_t index = 0; index + 1 < std::size(kActions); ++index) {
    if (chosen < kActions[index].weight) return index;
    chosen -= kActions[index].weight;
  }
  return std::size(kActions) - 1;
}

void tWorker::step() {
  size_t const chosen = choose();
  (this->*kActions[chosen].action)();
  ++counts[chosen];
}

void tell(std::vector<tWorker> const& workers, tShared const& shared, u64 seconds, u64 seed) {
  std::cout << "soak: " << seconds << " s, seed " << seed;
  for (size_t index = 0; index < std::size(tWorker::kActions); ++index) {
    u64 sum = 0;
    for (tWorker const& worker : workers) sum += worker.counts[index];
    EXPECT_NE(sum, 0u) << tWorker::kActions[index].name;
    std::cout << ", " << sum << " " << tWorker::kActions[index].name;
  }
  std::cout << ", " << shared.printed << " prints" << std::endl;
}

}  // namespace

TEST(Soak, EverythingAtOnce) {
  u64 const seconds = numberFrom("OXDIAG_SOAK_SECONDS", 3);
  u64 const seed = numberFrom("OXDIAG_SOAK_SEED", std::random_device()());
  tDriveFolder const drive;
  ntoshost::limitDrive('C', kDriveBytes);
  tShared shared;
  ntoshost::setDebugPrintSink(&countPrint, &shared);
  std::vector<tWorker> workers;
  for (u64 index = 0; index < kThreads; ++index) workers.emplace_back(shared, seed + index);
  std::vector<std::thread> threads;
  for (tWorker& worker : workers) threads.emplace_back([&worker] { worker.run(); });
  std::this_thread::sleep_for(std::chrono::seconds(seconds));  // of the soak
  shared.isOver = true;
  for (std::thread& thread : threads) thread.join();
  for (std::atomic<u32> const& handle : shared.handles) releaseInstance(handle);
  tTrace::getInstance().configure("--destination vex");
  tell(workers, shared, seconds, seed);
  ntoshost::requireNoHandles("the soak");
  oxdiagkUnload();
  ntoshost::setDebugPrintSink(nullptr, nullptr);
  ASSERT_EQ(oxdiagkInitialize(nullptr), STATUS_SUCCESS);
}
