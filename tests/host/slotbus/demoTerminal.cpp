// The demo at a terminal of its own: its question, Ctrl-C, and a terminal that goes.

#include <poll.h>
#include <pty.h>

#include <chrono>
#include <csignal>
#include <cstring>

#include "demoTest.h"

namespace {

constexpr std::chrono::seconds kLongestReading{30};
constexpr char kCtrlC[] = "\x03";
constexpr char kQuestion[] = "then press Return here.";

using tClock = std::chrono::steady_clock;

class SlotbusTerminal : public tDemoTest {
 protected:
  void TearDown() override {
    if (child > 0) {
      kill(child, SIGKILL);
      waitpid(child, nullptr, 0);
    }
    closeTerminal();
    tDemoTest::TearDown();
  }

  std::string socket() const { return pathOf("socket"); }

  // Starts the demo as a user at a keyboard does.
  void start(std::vector<std::string> arguments) {
    child = forkpty(&keyboard, nullptr, nullptr, nullptr);
    if (child == 0) become(std::move(arguments));
    ASSERT_GT(child, 0);
  }

  void type(char const* keys) const {
    EXPECT_EQ(::write(keyboard, keys, std::strlen(keys)), static_cast<ssize_t>(std::strlen(keys)));
  }

  void waitFor(char const* text) {
    auto const end = tClock::now() + kLongestReading;
    while (!contains(shown, text) && tClock::now() < end && isReading()) {
    }
    EXPECT_TRUE(contains(shown, text)) << shown;
  }

  // The state of the demo behind its end, which has to come in about a second. Until then its
  // terminal takes what it writes.
  int awaitEnd() {
    auto const begin = tClock::now();
    while (keyboard >= 0 && tClock::now() < begin + kLongestReading && isReading()) {
    }
    int state = 0;
    EXPECT_EQ(waitpid(child, &state, 0), child);
    child = 0;
    EXPECT_LT(tClock::now() - begin, kMostOfEnding) << shown;
    return state;
  }

  void closeTerminal() {
    if (keyboard >= 0) close(keyboard);
    keyboard = -1;
  }

 private:
  [[noreturn]] static void become(std::vector<std::string> arguments) {
    signal(SIGHUP, SIG_DFL);
    arguments.insert(arguments.begin(), kDemo);
    std::vector<char*> pointers;
    for (std::string& argument : arguments) pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    execv(kDemo, pointers.data());
    _exit(127);
  }

  // Takes what the terminal shows, if there is anything soon; false when the demo has left it.
  bool isReading() {
    constexpr int kMilliseconds = 100;
    pollfd screen = {keyboard, POLLIN, 0};
    if (poll(&screen, 1, kMilliseconds) == 0) return true;
    char text[512];
    ssize_t const length = read(keyboard, text, sizeof(text));
    if (length > 0) shown.append(text, static_cast<size_t>(length));
    return length > 0;
  }

  pid_t child = 0;
  int keyboard = -1;
  std::string shown;
};

std::vector<std::string> const kToSerialPort = {"--trace", "--destination serial"};

}  // namespace

TEST_F(SlotbusTerminal, CtrlCEndsTheQuestion) {
  start(kToSerialPort);
  waitFor(kQuestion);
  type(kCtrlC);
  int const state = awaitEnd();
  EXPECT_TRUE(WIFSIGNALED(state) && WTERMSIG(state) == SIGINT) << state;
}

// The demo has traced to the port by then, which nobody reads, and says so.
TEST_F(SlotbusTerminal, CtrlCEndsTheQuestionOfWhoServes) {
  start({"--serve", "--at", socket(), kToSerialPort[0], kToSerialPort[1]});
  waitFor(kQuestion);
  type(kCtrlC);
  int const state = awaitEnd();
  EXPECT_TRUE(WIFEXITED(state) && WEXITSTATUS(state) == 4) << state;
  EXPECT_FALSE(std::filesystem::exists(socket()));
}

TEST_F(SlotbusTerminal, ReturnAnswersTheQuestion) {
  start({"--serve", "--at", socket(), kToSerialPort[0], kToSerialPort[1]});
  waitFor(kQuestion);
  EXPECT_FALSE(std::filesystem::exists(socket()));
  type("\n");
  waitFor("serving at");
  type(kCtrlC);
  awaitEnd();
  EXPECT_FALSE(std::filesystem::exists(socket()));
}

TEST_F(SlotbusTerminal, ATerminalThatGoesTakesTheSocketWithIt) {
  start({"--serve", "--at", socket()});
  waitFor("serving at");
  EXPECT_TRUE(std::filesystem::exists(socket()));
  closeTerminal();
  int const state = awaitEnd();
  EXPECT_TRUE(WIFEXITED(state)) << state;
  EXPECT_FALSE(std::filesystem::exists(socket()));
}
