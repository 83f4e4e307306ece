// The demo that stays: oxdiagctl changes its settings, and a signal ends it in order.

#include <csignal>

#include "demoTest.h"

namespace {

constexpr char kControl[] = OXDIAG_BINARY_DIR "/tools/oxdiagctl/oxdiagctl";
constexpr useconds_t kPause = 20'000;  // microseconds
constexpr int kPatience = 1500;        // pauses: 30 seconds

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
