// The demo that stays: oxdiagctl changes its settings, and a signal ends it in order.

#include <sys/mman.h>

#include <csignal>
#include <memory>
#include <vector>

#include "demoTest.h"
#include "oxdiagk/tunnelRequest.h"
#include "requests/tConnection.h"

using nOXDIAG100::kTunnelName;
using nOXDIAG100::tTunnelHeader;
using nOXDIAG100::tTunnelRecord;
using vexkhost::kRequestAccepted;

namespace {

constexpr char kControl[] = OXDIAG_BINARY_DIR "/tools/oxdiagctl/oxdiagctl";
constexpr useconds_t kPause = 20'000;  // microseconds
constexpr int kPatience = 1500;        // pauses: 30 seconds

// A request that takes the demo a while: it reads each record from the caller.
struct tLongRequest {
  static constexpr u32 kCount = 20'000;

  tTunnelHeader header = {0, kCount};
  tTunnelRecord records[kCount] = {};
};

class SlotbusServe : public tDemoTest {
 protected:
  void TearDown() override {
    if (child > 0) kill(child, SIGKILL);
    tDemoTest::TearDown();
  }

  std::string socket() const { return pathOf("socket"); }

  void start() {
    child = fork();
    if (child == 0) becomeServer();
    waitFor("server.err", "serving at " + socket());
  }

  // Ends the demo and gives its exit code.
  int end(int signal) {
    int state = 0;
    kill(child, signal);
    EXPECT_EQ(waitpid(child, &state, 0), child);
    child = 0;
    return WIFEXITED(state) ? WEXITSTATUS(state) : -1;
  }

  tRun control(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {kControl, "--at", socket()});
    return runProgram(std::move(arguments));
  }

  // Runs `body` in a process of its own; its exit code, negative when a signal has ended it.
  template <class tBody>
  static int inCaller(tBody body) {
    pid_t const caller = fork();
    if (caller == 0) _exit(body());
    int state = 0;
    EXPECT_EQ(waitpid(caller, &state, 0), caller);
    return WIFEXITED(state) ? WEXITSTATUS(state) : -1;
  }

  void expectServing() const { EXPECT_EQ(control({"list"}).output, "trace\nassert\n"); }

  void waitFor(std::string const& file, std::string const& text) const {
    for (int turn = 0; turn < kPatience && !contains(readFile(file), text); ++turn) usleep(kPause);
    EXPECT_TRUE(contains(readFile(file), text)) << file << ": " << readFile(file);
  }

 private:
  [[noreturn]] void becomeServer() const {
    bool const isDirected = freopen(pathOf("server.out").c_str(), "w", stdout) != nullptr &&
                            freopen(pathOf("server.err").c_str(), "w", stderr) != nullptr;
    std::string const place = socket();
    if (isDirected) execl(kDemo, kDemo, "--serve", "--at", place.c_str(), nullptr);
    _exit(127);
  }

  pid_t child = 0;
};

}  // namespace

TEST_F(SlotbusServe, AnotherProgramChangesTheTraceWhileItRuns) {
  start();
  EXPECT_EQ(control({"list"}).output, "trace\nassert\n");
  EXPECT_EQ(control({"trace", "--compname", "off", "--linenumber", "off"}).exitCode, 0);
  waitFor("server.out", "\n[tSlotDevice.cpp");
  EXPECT_EQ(end(SIGINT), 0);
  EXPECT_TRUE(contains(readFile("server.out"), "tells its line"));
  EXPECT_TRUE(contains(readFile("server.out"), "the bus stops\n"));
}

TEST_F(SlotbusServe, ACallerThatDiesInTheMiddleHoldsUpNobody) {
  start();
  auto const request = std::make_unique<tLongRequest>();
  for (int round = 0; round < 20; ++round) {
    EXPECT_EQ(inCaller([&] {
                tConnection connection(socket());
                if (connection.awaitGreeting() != kRequestAccepted) return 1;
                if (!connection.send(kTunnelName, request.get())) return 2;
                usleep(round * 100);
                return raise(SIGKILL);
              }),
              -1);
    expectServing();
  }
  EXPECT_EQ(end(SIGINT), 0);
}

TEST_F(SlotbusServe, ACallerThatUnmapsItsBufferIsAnsweredAllTheSame) {
  start();
  for (int round = 0; round < 20; ++round) {
    EXPECT_EQ(inCaller([&] {
                void* const memory = mmap(nullptr, sizeof(tLongRequest), PROT_READ | PROT_WRITE,
                                          MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
                auto* const request = new (memory) tLongRequest;
                tConnection connection(socket());
                if (connection.awaitGreeting() != kRequestAccepted) return 1;
                if (!connection.send(kTunnelName, request)) return 2;
                usleep(round * 100);
                munmap(memory, sizeof(tLongRequest));
                return connection.awaitReply() == kRequestAccepted ? 0 : 3;
              }),
              0);
    expectServing();
  }
  EXPECT_EQ(end(SIGINT), 0);
}

TEST_F(SlotbusServe, AnotherUserIsRefused) {
  ASSERT_EQ(geteuid(), 0u) << "only root can become another user";
  start();
  std::filesystem::permissions(pathOf(""), std::filesystem::perms{0755});
  std::filesystem::permissions(socket(), std::filesystem::perms{0666});
  std::string const call =
      "setpriv --reuid 65534 --clear-groups " + std::string(kControl) + " --at " + socket();
  EXPECT_EQ(runProgram({"sh", "-c", call + " trace --off"}).exitCode, 3);
  expectServing();
  EXPECT_EQ(end(SIGINT), 0);
}

TEST_F(SlotbusServe, TheSocketGoesWithTheProgram) {
  start();
  EXPECT_TRUE(std::filesystem::exists(socket()));
  EXPECT_EQ(end(SIGTERM), 0);
  EXPECT_FALSE(std::filesystem::exists(socket()));
  EXPECT_EQ(control({"list"}).exitCode, 2);
}

TEST_F(SlotbusServe, APlaceThatIsTakenIsNamed) {
  start();
  tRun const second = run({"--serve", "--at", socket()});
  EXPECT_EQ(second.exitCode, 4);
  EXPECT_TRUE(isOneSentence(second.errors)) << second.errors;
  EXPECT_EQ(end(SIGINT), 0);
}

TEST_F(SlotbusServe, ASocketIsForThoseWhoServe) {
  EXPECT_EQ(run({"--at", socket()}).exitCode, 64);
}
