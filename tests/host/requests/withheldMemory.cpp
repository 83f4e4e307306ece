// Callers whose memory never arrives, and those of several users who want the same places.

#include <signal.h>
#include <sys/mman.h>
#include <sys/prctl.h>

#include <chrono>
#include <memory>
#include <thread>
#include <vector>

#include "requests/requestTest.h"
#include "requests/tWithheldPages.h"

using namespace vexkhost;

namespace {

using tClock = std::chrono::steady_clock;

constexpr uid_t kSomebody = 65534;
constexpr std::chrono::milliseconds kOneSecond{1000};
constexpr std::chrono::milliseconds kBetweenLooks{1};
constexpr int kLooks = 20000;
constexpr int kAttempts = 10;

#define SKIP_UNLESS_MEMORY_CAN_BE_WITHHELD() \
  if (!canWithhold()) GTEST_SKIP() << "the system lets only root handle faults of its memory"

class WithheldMemory : public RequestTest {
 protected:
  WithheldMemory() { startServer(); }
  ~WithheldMemory() override {
    stuck.clear();
    stopRequestServer();
    // Those who waited in the system are through with it when the memory's owner is gone.
    awaitThat([this] { return countDescriptors() == descriptors; });
  }

  bool isServing() const { return tConnection(path).isConnected(); }

  template <class tCondition>
  static bool awaitThat(tCondition condition) {
    for (int look = 0; look < kLooks && !condition(); ++look) {
      std::this_thread::sleep_for(kBetweenLooks);  // not for long
    }
    return condition();
  }

  // A process with a request in memory that never arrives; its exit code is the answer.
  void addStuck() {
    stuck.push_back(std::make_unique<tStuck>([this] {
      void* const page = newPage();
      if (!withhold(page)) return 100;
      return tConnection(path).call(kDoubler, page);
    }));
  }

  // On a busy machine a place may not be given up in time; who is refused asks again.
  int callUntilServed() const {
    int answer = kRequestTooManyCallers;
    for (int attempt = 0; attempt < kAttempts && answer == kRequestTooManyCallers; ++attempt) {
      answer = callOnce();
    }
    return answer;
  }

  // The milliseconds that it takes.
  template <class tBody>
  static std::chrono::milliseconds timeOf(tBody body) {
    tClock::time_point const begin = tClock::now();
    body();
    return std::chrono::duration_cast<std::chrono::milliseconds>(tClock::now() - begin);
  }

  class tStuck : public tChild {
   public:
    using tChild::tChild;
    ~tStuck() {
      if (pid > 0) kill(pid, SIGKILL);
    }
  };

  std::vector<std::unique_ptr<tStuck>> stuck;
};

// A server of another user than this program's, in a process of its own, with requests of that
// user waiting at its gate.
class tOtherServer {
 public:
  tOtherServer(RequestTest const&, std::string const& path, tDoubler& doubler, int busyCount)
      : server([&] {
          if (setuid(kSomebody) != 0 || !startRequestServer(path.c_str())) return 1;
          bool isSaid = isStarted.give();
          doubler.gate.awaitArrivals(busyCount);
          isSaid = isSaid && isBusy.give() && mayEnd.await();
          doubler.gate.open();
          stopRequestServer();
          return isSaid ? 0 : 2;
        }) {
    EXPECT_TRUE(isStarted.await());
  }
  ~tOtherServer() {
    EXPECT_TRUE(mayEnd.give());
    EXPECT_EQ(server.await(), 0);
  }

  void awaitBusy() { EXPECT_TRUE(isBusy.await()); }

 private:
  tSignal isStarted;
  tSignal isBusy;
  tSignal mayEnd;
  tChild server;
};

// Gives every byte of a long text back, one larger, and looks how much there is behind.
class tEcho : public iLib::iDispatcher {
 public:
  tEcho() : iDispatcher("nTEST://nEcho") {
    i32 status = 0;
    iLib::exportDispatcher(*this, status);
  }
  ~tEcho() override {
    i32 status = 0;
    iLib::unexportDispatcher(*this, status);
  }
  void dispatch(u64 request) override {
    std::vector<u8> bytes(kLength);
    read = vexCopyFromUser(bytes.data(), request, kLength);
    for (u8& byte : bytes) byte = static_cast<u8>(byte + 1);
    written = vexCopyToUser(request, bytes.data(), kLength);
    beyond = vexCopyFromUser(bytes.data(), request + kLength - 10, kLength);
  }
  static constexpr size_t kLength = 25 * kPage;
  std::atomic<size_t> read = 0;
  std::atomic<size_t> written = 0;
  std::atomic<size_t> beyond = 0;
};

// Reads the same word of the caller for as long as it can be read.
class tReader : public iLib::iDispatcher {
 public:
  tReader() : iDispatcher("nTEST://nReader") {
    i32 status = 0;
    iLib::exportDispatcher(*this, status);
  }
  ~tReader() override {
    i32 status = 0;
    iLib::unexportDispatcher(*this, status);
  }
  void dispatch(u64 request) override {
    u32 word = 0;
    while (count < kMost && vexCopyFromUser(&word, request, sizeof(word)) == sizeof(word)) ++count;
  }
  static constexpr u32 kMost = 10'000'000;  // takes a minute
  std::atomic<u32> count = 0;
};

// The module that the dispatchers before it belong to.
class tRegisteredOwner {
 public:
  tRegisteredOwner() {
    i32 status = 0;
    libRegisterModuleWithVEX(info, status);
    EXPECT_EQ(status, 0);
  }
  ~tRegisteredOwner() {
    i32 status = 0;
    libUnregisterModuleWithVEX(info, status);
  }
  tRegisteredOwner(tRegisteredOwner const&) = delete;
  tRegisteredOwner& operator=(tRegisteredOwner const&) = delete;

 private:
  tModulePackage package = {};
  _tLibModuleInfo info = {&package, "echo", [](u32) { return i32{0}; }, 0};
};

class PlacesOfUsers : public RequestTest {
 protected:
  void SetUp() override {
    if (geteuid() != 0) GTEST_SKIP() << "only root can become another user";
    std::filesystem::permissions(folder.pathOf(""), std::filesystem::perms{0777});
  }

  // A process of that other user that connects so often and sends, on each connection, a request
  // that waits at the gate if it is told to; ends when it is let.
  int keepPlaces(u32 count, bool isBusy, tSignal const& areTaken, tSignal const& mayEnd) const {
    if (setuid(kSomebody) != 0 || prctl(PR_SET_DUMPABLE, 1) != 0) return 1;
    static tDoubling doubling = {1, 0, 1};
    std::vector<std::unique_ptr<tConnection>> connections;
    for (u32 index = 0; index < count; ++index) {
      connections.push_back(std::make_unique<tConnection>(path));
      if (connections.back()->awaitGreeting() != kRequestAccepted) return 2;
      if (isBusy && !connections.back()->send(kDoubler, &doubling)) return 3;
    }
    return areTaken.give() && mayEnd.await() ? 0 : 4;
  }

  int greetSomebody() const {
    return tChild([this] {
             if (setuid(kSomebody) != 0) return 100;
             return tConnection(path).awaitGreeting();
           })
        .await();
  }
};

}  // namespace

TEST_F(WithheldMemory, AStopWaitsLessThanASecondForIt) {
  SKIP_UNLESS_MEMORY_CAN_BE_WITHHELD();
  for (int count = 0; count < 5; ++count) addStuck();
  EXPECT_TRUE(awaitThat([this] { return doubler->begun == 5; }));
  EXPECT_LT(timeOf(stopRequestServer), kOneSecond);
  EXPECT_EQ(doubler->served, 0);
  EXPECT_FALSE(isServing());
}

TEST_F(WithheldMemory, AStopWaitsLessThanASecondForMemoryThatIsWrittenTo) {
  SKIP_UNLESS_MEMORY_CAN_BE_WITHHELD();
  tSignal const mayDrop;
  tSignal const isDropped;
  stuck.push_back(std::make_unique<tStuck>([&] {
    void* const page = newPage();
    *static_cast<tDoubling*>(page) = {1, 0, 1};
    if (!withhold(page)) return 100;
    tConnection connection(path);
    if (connection.awaitGreeting() != kRequestAccepted) return 101;
    if (!connection.send(kDoubler, page) || !mayDrop.await()) return 102;
    if (madvise(page, kPage, MADV_DONTNEED) != 0 || !isDropped.give()) return 103;
    return connection.awaitReply();
  }));
  doubler->gate.awaitArrivals(1);
  EXPECT_TRUE(mayDrop.give());
  EXPECT_TRUE(isDropped.await());
  doubler->gate.open();
  EXPECT_LT(timeOf(stopRequestServer), kOneSecond);
  EXPECT_EQ(doubler->served, 0);
}

TEST_F(WithheldMemory, OthersAreServedBesideIt) {
  SKIP_UNLESS_MEMORY_CAN_BE_WITHHELD();
  addStuck();
  EXPECT_TRUE(awaitThat([this] { return doubler->begun == 1; }));
  EXPECT_EQ(callOnce(), 0);
}

TEST_F(WithheldMemory, WhoHasAllPlacesOfAUserGivesThemToTheNext) {
  SKIP_UNLESS_MEMORY_CAN_BE_WITHHELD();
  for (u32 count = 0; count < kRequestPlacesOfOneUser; ++count) addStuck();
  EXPECT_TRUE(awaitThat([this] { return doubler->begun == int{kRequestPlacesOfOneUser}; }));
  std::this_thread::sleep_for(kOneSecond / 5);  // until all are stuck
  for (int call = 0; call < 3; ++call) EXPECT_EQ(callUntilServed(), 0);
  EXPECT_EQ(doubler->served, 3);
}

TEST_F(WithheldMemory, CountsAsGoneAfterAWhile) {
  SKIP_UNLESS_MEMORY_CAN_BE_WITHHELD();
  addStuck();
  std::chrono::milliseconds const taken =
      timeOf([this] { EXPECT_EQ(stuck.front()->await(), kRequestAccepted); });
  EXPECT_GE(taken.count() + 1, kRequestMemoryPatience);
  EXPECT_EQ(doubler->served + doubler->unwritten, 0);
}

TEST_F(WithheldMemory, ThatArrivesAfterAllIsServed) {
  SKIP_UNLESS_MEMORY_CAN_BE_WITHHELD();
  tChild caller([this] {
    void* const page = newPage();
    tWithheldPages const withheld(page, kPage);
    if (!withheld.isWithheld) return 100;
    tConnection connection(path);
    if (connection.awaitGreeting() != kRequestAccepted) return 102;
    if (!connection.send(kDoubler, page)) return 103;
    std::this_thread::sleep_for(kOneSecond / 2);  // the server reads meanwhile
    if (!withheld.deliver(page, tDoubling{21})) return 104;
    if (connection.awaitReply() != kRequestAccepted) return 105;
    return static_cast<tDoubling*>(page)->result == 42 ? 0 : 106;
  });
  EXPECT_EQ(caller.await(), 0);
  EXPECT_EQ(doubler->served, 1);
}

// The way to find out whether memory may be touched is to touch it where there is none.
TEST_F(WithheldMemory, AStopWaitsLessThanASecondForAFirstPageThatIsWithheld) {
  SKIP_UNLESS_MEMORY_CAN_BE_WITHHELD();
  tSignal const isSent;
  stuck.push_back(std::make_unique<tStuck>([&] {
    void* const first = mmap(nullptr, kPage, PROT_READ | PROT_WRITE,
                             MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0);
    bool const isWithheld = first == nullptr && withhold(first);
    tConnection connection(path);
    static tDoubling doubling = {21};
    if (connection.awaitGreeting() != kRequestAccepted) return 101;
    if (!connection.send(kDoubler, &doubling) || !isSent.give()) return 102;
    return isWithheld ? connection.awaitReply() : 100;
  }));
  EXPECT_TRUE(isSent.await());
  std::this_thread::sleep_for(kOneSecond / 10);  // until the server reads
  EXPECT_LT(timeOf(stopRequestServer), kOneSecond);
  EXPECT_EQ(doubler->served, 0);
}

TEST_F(WithheldMemory, AStopWaitsLessThanASecondForMemoryThatTricklesIn) {
  SKIP_UNLESS_MEMORY_CAN_BE_WITHHELD();
  tEcho echo;
  tRegisteredOwner const owner;
  tSignal const isSent;
  stuck.push_back(std::make_unique<tStuck>([&] {
    auto* const pages = static_cast<u8*>(newPages(tEcho::kLength));
    tWithheldPages const withheld(pages, tEcho::kLength);
    tConnection connection(path);
    if (connection.awaitGreeting() != kRequestAccepted) return 101;
    if (!connection.send("nTEST://nEcho", pages) || !isSent.give()) return 102;
    for (size_t at = 0; at < tEcho::kLength; at += kPage) {
      std::this_thread::sleep_for(kOneSecond / 8);  // each page comes a little later
      if (!withheld.deliver(pages + at, u8{0})) return 103;
    }
    return connection.awaitReply();
  }));
  EXPECT_TRUE(isSent.await());
  std::this_thread::sleep_for(kOneSecond / 2);  // the server has some of the pages
  EXPECT_LT(timeOf(stopRequestServer), kOneSecond);
  EXPECT_LT(echo.read, tEcho::kLength);
}

TEST_F(WithheldMemory, AStopWaitsLessThanASecondForARequestThatReadsAndReads) {
  tReader reader;
  tRegisteredOwner const owner;
  stuck.push_back(std::make_unique<tStuck>([this] {
    u32 word = 1;
    return tConnection(path).call("nTEST://nReader", &word);
  }));
  EXPECT_TRUE(awaitThat([&reader] { return reader.count != 0; }));
  EXPECT_LT(timeOf(stopRequestServer), kOneSecond);
  EXPECT_LT(reader.count, tReader::kMost);
}

TEST_F(WithheldMemory, AProcessThatCallsAgainAndAgainLeavesFewThreadsBehind) {
  SKIP_UNLESS_MEMORY_CAN_BE_WITHHELD();
  constexpr u32 kCalls = 5 * kRequestPlacesOfOneUser;
  tSignal const hasCalled;
  stuck.push_back(std::make_unique<tStuck>([&] {
    void* const page = newPage();
    if (!withhold(page)) return 100;
    std::vector<std::unique_ptr<tConnection>> connections;
    while (connections.size() < kCalls) {
      auto connection = std::make_unique<tConnection>(path);
      if (connection->awaitGreeting() != kRequestAccepted) continue;
      if (!connection->send(kDoubler, page)) return 101;
      connections.push_back(std::move(connection));
    }
    return hasCalled.give() && tSignal().await() ? 0 : 102;
  }));
  EXPECT_TRUE(hasCalled.await());
  EXPECT_LE(countDescriptors() - descriptors, 4 * long{kRequestPlacesOfOneUser});
  EXPECT_EQ(callOnce(), 0);
}

TEST_F(WithheldMemory, LongTextsComeWholeThroughTheServer) {
  tEcho echo;
  tRegisteredOwner const owner;
  EXPECT_EQ(tChild([this] {
              auto* const bytes =
                  static_cast<u8*>(mmap(nullptr, tEcho::kLength + kPage, PROT_READ | PROT_WRITE,
                                        MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
              for (size_t index = 0; index < tEcho::kLength; ++index) {
                bytes[index] = static_cast<u8>(index * 7);
              }
              munmap(bytes + tEcho::kLength, kPage);
              if (tConnection(path).call("nTEST://nEcho", bytes) != kRequestAccepted) return 1;
              for (size_t index = 0; index < tEcho::kLength; ++index) {
                if (bytes[index] != static_cast<u8>(index * 7 + 1)) return 2;
              }
              return 0;
            }).await(),
            0);
  EXPECT_EQ(echo.read, tEcho::kLength);
  EXPECT_EQ(echo.written, tEcho::kLength);
  EXPECT_EQ(echo.beyond, 10u);
}

TEST_F(PlacesOfUsers, RequestsOfOneThatRunLeavePlacesToTheOther) {
  tSignal areTaken;
  tSignal mayEnd;
  tOtherServer server(*this, path, *doubler, int{kRequestPlacesOfOneUser});
  tChild busy([&] { return keepPlaces(kRequestPlacesOfOneUser, true, areTaken, mayEnd); });
  EXPECT_TRUE(areTaken.await());
  server.awaitBusy();
  EXPECT_EQ(greetSomebody(), kRequestTooManyCallers);
  EXPECT_EQ(tConnection(path).awaitGreeting(), kRequestAccepted);
  EXPECT_TRUE(mayEnd.give());
  EXPECT_EQ(busy.await(), 0);
}

TEST_F(PlacesOfUsers, SilentOnesOfOneDoNotTakeThePlaceOfTheOther) {
  tSignal areTaken;
  tSignal mayEnd;
  tOtherServer server(*this, path, *doubler, 0);
  tConnection silent(path);
  EXPECT_EQ(silent.awaitGreeting(), kRequestAccepted);
  tChild crowd([&] { return keepPlaces(3 * kRequestPlaces, false, areTaken, mayEnd); });
  EXPECT_TRUE(areTaken.await());
  // Its memory is closed to that server; an answer it gets all the same.
  static tDoubling doubling = {21};
  EXPECT_TRUE(silent.send(kDoubler, &doubling));
  EXPECT_EQ(silent.awaitReply(), kRequestMemoryClosed);
  EXPECT_TRUE(mayEnd.give());
  EXPECT_EQ(crowd.await(), 0);
}

TEST_F(PlacesOfUsers, WhoIsRefusedTakesNone) {
  startServer();
  std::filesystem::permissions(path, std::filesystem::perms{0666});
  std::vector<std::unique_ptr<tConnection>> silent;
  for (u32 count = 0; count < kRequestPlacesOfOneUser; ++count) {
    silent.push_back(std::make_unique<tConnection>(path));
    EXPECT_EQ(silent.back()->awaitGreeting(), kRequestAccepted);
  }
  EXPECT_EQ(tChild([this] {
              if (setuid(kSomebody) != 0) return 100;
              std::vector<std::unique_ptr<tConnection>> refused;
              for (u32 count = 0; count < 2 * kRequestPlaces; ++count) {
                refused.push_back(std::make_unique<tConnection>(path));
                if (refused.back()->awaitGreeting() != kRequestOtherUser) return 101;
              }
              return 0;
            }).await(),
            0);
  static tDoubling doubling = {5};
  for (auto const& connection : silent) {
    EXPECT_TRUE(connection->send(kDoubler, &doubling));
    EXPECT_EQ(connection->awaitReply(), kRequestAccepted);
  }
}
