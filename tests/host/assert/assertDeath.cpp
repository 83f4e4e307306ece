// What cannot be watched from inside: contracts that break into the debugger or stop the system.
// Each is watched in a process of its own.

#include <sys/wait.h>
#include <ucontext.h>
#include <unistd.h>

#include <csignal>
#include <string>

#define OXDIAG_COMPONENT "death"
#define OXDIAG_COMPONENT_VERSION tSSVersion()

#include "oxdiagk/assertion.h"
#include "oxdiagk/contractMacros.h"
#include "oxdiagk/tAssertConfiguration.h"
#include "trace/startedModules.h"

namespace {

using nOXDIAG100::tAssertConfiguration;

// Exit codes.
constexpr int kReturned = 7;
constexpr int kLooped = 8;
constexpr int kWroteSomethingElse = 9;

// How a child ended: the signal as a negative number, or the exit code.
template <class Body>
int inAProcess(Body body) {
  pid_t const child = fork();
  if (child == 0) {
    // The sanitizers' own handlers would turn the fault into an exit.
    std::signal(SIGSEGV, SIG_DFL);
    std::signal(SIGTRAP, SIG_DFL);
    body();
    _exit(kReturned);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

void goOn(char const* category) {
  nOXDIAG100::continuationAction(const_cast<char*>(category), nullptr, tSSVersion(), 0, nullptr);
}

int goOnWith(char const* options, char const* category) {
  return inAProcess([&] {
    tAssertConfiguration::getInstance().configure(options);
    goOn(category);
  });
}

volatile std::sig_atomic_t trapsSeen = 0;

// The word that terminate writes, once the fault handler has given it a place to write to.
u32 volatile writtenMark = 0;
u64 volatile faultAddress = ~u64{0};

// Whatever register held address 0 then holds the address of the mark, and the store is done again.
void redirectStore(int, siginfo_t* information, void* context) {
  faultAddress = reinterpret_cast<u64>(information->si_addr);
  auto& registers = static_cast<ucontext_t*>(context)->uc_mcontext.gregs;
  for (int index : {REG_RAX, REG_RBX, REG_RCX, REG_RDX, REG_RSI, REG_RDI, REG_R8, REG_R9, REG_R10,
                    REG_R11, REG_R12, REG_R13, REG_R14, REG_R15}) {
    if (registers[index] == 0) registers[index] = reinterpret_cast<greg_t>(&writtenMark);
  }
}

void judgeLoop(int) {
  bool const isRight = writtenMark == 0xDEADBEEF && faultAddress == 0;
  _exit(isRight ? kLooped : kWroteSomethingElse);
}

void terminateInAForgivingSystem() {
  struct sigaction action = {};
  action.sa_sigaction = &redirectStore;
  action.sa_flags = SA_SIGINFO;
  sigaction(SIGSEGV, &action, nullptr);
  std::signal(SIGALRM, &judgeLoop);
  ualarm(100'000, 0);
  nOXDIAG100::terminate();
}

}  // namespace

TEST(AssertDeath, TerminateStopsTheSystemByAFault) {
  EXPECT_EQ(inAProcess([] { nOXDIAG100::terminate(); }), -SIGSEGV);
}

TEST(AssertDeath, TerminateWritesItsMarkAtAddressZeroAndThenLoops) {
  EXPECT_EQ(inAProcess(&terminateInAForgivingSystem), kLooped);
}

TEST(AssertDeath, BreakToDebuggerIsATrap) {
  EXPECT_EQ(inAProcess([] { nOXDIAG100::breakToDebugger(); }), -SIGTRAP);
}

TEST(AssertDeath, BreakToDebuggerReturnsWhenTheDebuggerGoesOn) {
  EXPECT_EQ(inAProcess([] {
              std::signal(SIGTRAP, [](int) { trapsSeen = trapsSeen + 1; });
              nOXDIAG100::breakToDebugger();
              _exit(trapsSeen);
            }),
            1);
}

TEST(AssertDeath, BuiltInCategoriesBreakExceptWarning) {
  EXPECT_EQ(goOnWith("", "default"), -SIGTRAP);
  EXPECT_EQ(goOnWith("", "statusFatal"), -SIGTRAP);
  EXPECT_EQ(goOnWith("", "statusWarning"), -SIGTRAP);
  EXPECT_EQ(goOnWith("", "warning"), kReturned);
}

TEST(AssertDeath, ANewCategoryBreaks) {
  EXPECT_EQ(goOnWith("--category rack", "rack"), -SIGTRAP);
}

TEST(AssertDeath, AnUnknownCategoryGoesOn) {
  EXPECT_EQ(goOnWith("--terminate on", "rack"), kReturned);
}

TEST(AssertDeath, BreakIsOnceAndGoesOnWhenTheDebuggerDoes) {
  EXPECT_EQ(inAProcess([] {
              std::signal(SIGTRAP, [](int) { trapsSeen = trapsSeen + 1; });
              goOn("default");
              _exit(trapsSeen);
            }),
            1);
}

TEST(AssertDeath, WithoutBreakItGoesOn) {
  EXPECT_EQ(goOnWith("--category default --break off", "default"), kReturned);
}

TEST(AssertDeath, TerminateWinsOverBreak) {
  EXPECT_EQ(goOnWith("--category default --terminate on --break on", "default"), -SIGSEGV);
}

TEST(AssertDeath, TerminateNeedsNoBreak) {
  EXPECT_EQ(goOnWith("--category warning --terminate on", "warning"), -SIGSEGV);
}

TEST(AssertDeath, TerminateOfOneCategoryIsNotThatOfAnother) {
  EXPECT_EQ(goOnWith("--category rack --terminate on", "warning"), kReturned);
}

TEST(AssertDeath, AContractThatDoesNotHoldBreaksInDefault) {
  EXPECT_EQ(inAProcess([] { OXDIAG_REQUIRE(1 == 2); }), -SIGTRAP);
}

TEST(AssertDeath, AContractThatHoldsDoesNot) {
  EXPECT_EQ(inAProcess([] { OXDIAG_REQUIRE(1 == 1); }), kReturned);
}

TEST(AssertDeath, AContractThatIsNotCheckedDoesNot) {
  EXPECT_EQ(inAProcess([] {
              tAssertConfiguration::getInstance().configure("--preconditions off");
              OXDIAG_REQUIRE(1 == 2);
            }),
            kReturned);
}

TEST(AssertDeath, AContractThatTerminatesHasReportedBefore) {
  testing::internal::CaptureStderr();
  int const end = inAProcess([] {
    tAssertConfiguration::getInstance().configure("--terminate");
    OXDIAG_ENSURE_MESSAGE(1 == 2, "the last line");
  });
  std::string const print = testing::internal::GetCapturedStderr();
  EXPECT_EQ(end, -SIGSEGV);
  EXPECT_NE(print.find("ASSERTION FAILED: the last line\n"), std::string::npos) << print;
}
