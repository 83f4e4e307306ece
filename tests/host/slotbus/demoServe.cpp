// The demo that stays: oxdiagctl changes its settings, and a signal ends it in order.

#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/resource.h>

#include <chrono>
#include <csignal>
#include <memory>
#include <new>
#include <vector>

#include "demoTest.h"
#include "oxdiagk/tunnelRequest.h"
#include "requests/tConnection.h"

using nOXDIAG100::kTunnelName;
using nOXDIAG100::tTunnelHeader;
using nOXDIAG100::tTunnelRecord;
using vexkhost::kRequestAccepted;

namespace {

constexpr useconds_t kPause = 20'000;  // microseconds
constexpr rlim_t kRoom = 16384;        // bytes of a file
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

  void start(std::vector<std::string> const& arguments = {}) {
    launch(arguments);
    waitFor("server.err", "serving at " + socket());
  }

  // With its output in the file server.out, or to this descriptor.
  void launch(std::vector<std::string> const& arguments, int output = -1) {
    std::filesystem::remove(pathOf("server.err"));
    child = fork();
    if (child == 0) becomeServer(arguments, output);
  }

  // Ends the demo with SIGINT, which has to be over in about a second; its exit code.
  int endInTime() {
    auto const begin = std::chrono::steady_clock::now();
    int const exitCode = end(SIGINT);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, kMostOfEnding);
    return exitCode;
  }

  // Ends the demo and gives its exit code.
  int end(int signal) {
    int state = 0;
    sendSignal(signal);
    EXPECT_EQ(waitpid(child, &state, 0), child);
    child = 0;
    return WIFEXITED(state) ? WEXITSTATUS(state) : -1;
  }

  void sendSignal(int signal) const { kill(child, signal); }

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

  // What waits in the terminal of the serial port.
  std::string readSerialPort() const {
    std::string const read = "timeout 1 cat $(sed -n 's/^serial port 1 is //p' $0/server.err)";
    return runProgram({"sh", "-c", read, pathOf("")}).output;
  }

  // From now on a file of the demo cannot grow beyond kRoom.
  void limitFiles() const {
    rlimit const few = {kRoom, kRoom};
    EXPECT_EQ(prlimit(child, RLIMIT_FSIZE, &few, nullptr), 0);
  }

  // Looks now and then.
  void waitFor(std::string const& file, std::string const& text) const {
    for (int turn = 0; turn < kPatience && !contains(readFile(file), text); ++turn) usleep(kPause);
    EXPECT_TRUE(contains(readFile(file), text)) << file << ": " << readFile(file);
  }

  sighandler_t hangup = SIG_DFL;  // what SIGHUP does to the demo at its start

 private:
  // In the folder of the test, as a user starts it.
  [[noreturn]] void becomeServer(std::vector<std::string> arguments, int output) const {
    signal(SIGXFSZ, SIG_IGN);
    signal(SIGHUP, hangup);
    bool const isDirected = freopen(pathOf("server.out").c_str(), "w", stdout) != nullptr &&
                            freopen(pathOf("server.err").c_str(), "w", stderr) != nullptr &&
                            (output < 0 || dup2(output, STDOUT_FILENO) >= 0) &&
                            chdir(pathOf("").c_str()) == 0;
    arguments.insert(arguments.begin(), {kDemo, "--serve", "--at", socket()});
    std::vector<char*> pointers;
    for (std::string& argument : arguments) pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    if (isDirected) execv(kDemo, pointers.data());
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
                usleep(static_cast<useconds_t>(round) * 100);  // another moment of its work
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
                usleep(static_cast<useconds_t>(round) * 100);  // another moment of its work
                munmap(memory, sizeof(tLongRequest));
                return connection.awaitReply() == kRequestAccepted ? 0 : 3;
              }),
              0);
    expectServing();
  }
  EXPECT_EQ(end(SIGINT), 0);
}

TEST_F(SlotbusServe, AnotherUserIsRefused) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can become another user";
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
  for (int const signal : {SIGINT, SIGTERM, SIGHUP}) {
    start();
    EXPECT_TRUE(std::filesystem::exists(socket()));
    EXPECT_EQ(end(signal), 0) << signal;
    EXPECT_FALSE(std::filesystem::exists(socket())) << signal;
    EXPECT_EQ(control({"list"}).exitCode, 2);
  }
}

TEST_F(SlotbusServe, SurvivesTheEndOfItsTerminalWhenItWasStartedForThat) {
  hangup = SIG_IGN;
  start();
  sendSignal(SIGHUP);
  usleep(100'000);  // time to end, if the signal did that
  expectServing();
  EXPECT_EQ(end(SIGINT), 0);
}

TEST_F(SlotbusServe, APlaceThatIsTakenIsNamed) {
  start();
  tRun const second = run({"--serve", "--at", socket()});
  EXPECT_EQ(second.exitCode, 4);
  EXPECT_TRUE(isOneSentence(second.errors)) << second.errors;
  EXPECT_EQ(end(SIGINT), 0);
}

TEST_F(SlotbusServe, TakesAnyDestinationWhateverItWasStartedWith) {
  for (std::vector<std::string> const& words :
       {std::vector<std::string>{}, {"--trace", "--timestamp on"}, {"--capture"}}) {
    start(words);
    tRun const toFile = control({"trace", "--destination", "file", "C:/x.out"});
    EXPECT_EQ(toFile.exitCode, 0) << toFile.errors;
    waitFor("x.out", "tells its line");
    tRun const toPort = control({"trace", "--destination", "serial"});
    EXPECT_EQ(toPort.exitCode, 0) << toPort.errors;
    EXPECT_EQ(control({"trace", "--destination", "vex"}).exitCode, 0);
    EXPECT_TRUE(contains(readSerialPort(), "Switching trace destination to VEX"));
    EXPECT_EQ(endInTime(), 0) << readFile("server.err");
    std::filesystem::remove(pathOf("x.out"));
  }
}

TEST_F(SlotbusServe, TheSerialPortIsATerminalThatIsNamedAtTheStart) {
  start();
  EXPECT_EQ(control({"trace", "--destination", "serial"}).exitCode, 0);
  usleep(2'500'000);  // a device is asked every two seconds
  EXPECT_EQ(control({"trace", "--destination", "vex"}).exitCode, 0);
  EXPECT_TRUE(contains(readSerialPort(), "tells its line"));
  EXPECT_EQ(endInTime(), 0) << readFile("server.err");
}

TEST_F(SlotbusServe, ASerialPortThatNobodyReadsHoldsUpNoEnd) {
  start({"--filter", "verbosity>=60"});
  EXPECT_EQ(control({"trace", "--destination", "serial", "--prefixwidth", "4000"}).exitCode, 0);
  usleep(2'500'000);  // a device is asked every two seconds
  EXPECT_EQ(endInTime(), 4);
  EXPECT_TRUE(contains(readFile("server.err"), "slotbus_demo: "));
}

TEST_F(SlotbusServe, OutputThatNobodyTakesHoldsUpNoEnd) {
  int ends[2];
  ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
  fcntl(ends[1], F_SETPIPE_SZ, 4096);
  launch({kFaultyRack, "--trace", "--prefixwidth 1000"}, ends[1]);
  int waiting = 0;
  for (int turn = 0; turn < kPatience && waiting < 4096; ++turn) {
    usleep(kPause);  // between two looks
    ioctl(ends[0], FIONREAD, &waiting);
  }
  EXPECT_EQ(waiting, 4096);
  EXPECT_EQ(endInTime(), 4);
  EXPECT_EQ(readFile("server.err").substr(readFile("server.err").find("slotbus_demo: ")),
            "slotbus_demo: ended in the middle of its output, which nobody takes.\n");
  close(ends[0]);
  close(ends[1]);
}

TEST_F(SlotbusServe, AFullDiskIsReportedAtOnceAndAtTheEnd) {
  start();
  write("x.out", std::string(kRoom, 'x'));
  limitFiles();
  EXPECT_EQ(control({"trace", "--destination", "file", "C:/x.out"}).exitCode, 0);
  waitFor("server.err", "not all of the trace is in its file: the disk is full.\n");
  EXPECT_EQ(endInTime(), 4);
}

TEST_F(SlotbusServe, ASocketIsForThoseWhoServe) {
  EXPECT_EQ(run({"--at", socket()}).exitCode, 64);
}
