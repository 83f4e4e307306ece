// Guarded copies from and to user memory.

#include "ntoshost/userMemory.h"

#include <gtest/gtest.h>
#include <linux/sched.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <thread>

#include "ntos/irql.h"
#include "ntos/thread.h"
#include "ntoshost/faults.h"

namespace {

constexpr size_t kPage = 4096;

u64 addressOf(void const* pointer) {
  return reinterpret_cast<u64>(pointer);
}

// Some pages of memory with pages behind them that cannot be touched.
class UserMemory : public testing::Test {
 protected:
  static constexpr size_t kPages = 40;
  static constexpr size_t kSize = kPages * kPage;

  UserMemory() {
    void* const memory =
        mmap(nullptr, kSize + kPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    m_bytes = static_cast<u8*>(memory);
    mprotect(m_bytes + kSize, kPage, PROT_NONE);
    for (size_t at = 0; at < kSize; ++at) m_bytes[at] = static_cast<u8>(at * 7 + at / kPage);
  }

  ~UserMemory() override {
    ntoshost::setUserProcess(0);
    munmap(m_bytes, kSize + kPage);
  }

  u64 end() const { return addressOf(m_bytes + kSize); }

  u8* m_bytes;
};

TEST_F(UserMemory, ACopyInIsExact) {
  std::string copy(kSize, 0);
  EXPECT_EQ(ntoshost::copyFromUser(copy.data(), addressOf(m_bytes), kSize), kSize);
  EXPECT_EQ(memcmp(copy.data(), m_bytes, kSize), 0);
}

TEST_F(UserMemory, ACopyOutIsExact) {
  std::string const text(kSize, 'x');
  EXPECT_EQ(ntoshost::copyToUser(addressOf(m_bytes), text.data(), kSize), kSize);
  EXPECT_EQ(memcmp(text.data(), m_bytes, kSize), 0);
}

TEST_F(UserMemory, OnlyTheBytesAskedForAreTouched) {
  char copy[] = "########";
  EXPECT_EQ(ntoshost::copyFromUser(copy + 2, addressOf(m_bytes + 5), 3), 3u);
  EXPECT_EQ(copy[1], '#');
  EXPECT_EQ(memcmp(copy + 2, m_bytes + 5, 3), 0);
  EXPECT_EQ(copy[5], '#');
}

TEST_F(UserMemory, ACopyInEndsAtTheFault) {
  for (size_t before :
       {size_t{0}, size_t{1}, size_t{4095}, size_t{4096}, size_t{4097}, 20 * kPage + 3}) {
    std::string copy(kSize, '#');
    EXPECT_EQ(ntoshost::copyFromUser(copy.data(), end() - before, before + 1), before);
    EXPECT_EQ(memcmp(copy.data(), m_bytes + kSize - before, before), 0);
    EXPECT_EQ(copy[before], '#');
  }
}

TEST_F(UserMemory, ACopyOutEndsAtTheFault) {
  std::string const text(kSize, 'x');
  for (size_t before : {size_t{0}, size_t{1}, size_t{4096}, 33 * kPage + 1}) {
    EXPECT_EQ(ntoshost::copyToUser(end() - before, text.data(), before + 100), before);
  }
  EXPECT_EQ(m_bytes[kSize - 33 * kPage - 1], 'x');
}

TEST_F(UserMemory, AHoleInTheMiddleEndsTheCopy) {
  mprotect(m_bytes + 2 * kPage, kPage, PROT_NONE);
  std::string copy(kSize, '#');
  EXPECT_EQ(ntoshost::copyFromUser(copy.data(), addressOf(m_bytes + 10), kSize - 10),
            2 * kPage - 10);
}

TEST_F(UserMemory, MemoryThatCannotBeWrittenTakesNothing) {
  mprotect(m_bytes + kPage, kPage, PROT_READ);
  char const text[kPage] = {};
  EXPECT_EQ(ntoshost::copyToUser(addressOf(m_bytes + kPage - 5), text, 20), 5u);
}

TEST_F(UserMemory, BadAddressesGiveNothing) {
  char copy[16] = {};
  for (u64 address : {u64{0}, u64{1}, u64{0xFFFF'8000'0000'0000}, ~u64{0}, ~u64{0} - 7}) {
    EXPECT_EQ(ntoshost::copyFromUser(copy, address, sizeof(copy)), 0u) << std::hex << address;
    EXPECT_EQ(ntoshost::copyToUser(address, copy, sizeof(copy)), 0u) << std::hex << address;
  }
}

TEST_F(UserMemory, NothingIsCopiedAtNoLength) {
  EXPECT_EQ(ntoshost::copyFromUser(nullptr, 0, 0), 0u);
  EXPECT_EQ(ntoshost::copyToUser(0, nullptr, 0), 0u);
}

TEST_F(UserMemory, ACopyCanBeMadeToFail) {
  char copy[4];
  ntoshost::failNth(ntoshost::kFaultUserCopy, 2);
  EXPECT_EQ(ntoshost::copyFromUser(copy, addressOf(m_bytes), 4), 4u);
  EXPECT_EQ(ntoshost::copyToUser(addressOf(m_bytes), copy, 4), 0u);
  EXPECT_EQ(ntoshost::copyToUser(addressOf(m_bytes), copy, 4), 4u);
  ntoshost::clearFaults();
}

// A child with its own copy of the memory, alive until its pipe is closed.
class OtherProcess : public UserMemory {
 protected:
  OtherProcess() {
    EXPECT_EQ(pipe(m_pipe), 0);
    m_child = fork();
    if (m_child == 0) stayUntilClosed();
    close(m_pipe[0]);
  }

  ~OtherProcess() override { end(); }

  void end() {
    if (m_child == 0) return;
    close(m_pipe[1]);
    waitpid(m_child, nullptr, 0);
    m_child = 0;
  }

  [[noreturn]] void stayUntilClosed() {
    close(m_pipe[1]);
    char byte;
    while (read(m_pipe[0], &byte, 1) > 0) {
    }
    _exit(0);
  }

  int m_pipe[2];
  pid_t m_child;
};

TEST_F(OtherProcess, ItsMemoryIsTheUserMemory) {
  ASSERT_TRUE(ntoshost::setUserProcess(m_child));
  u8 const original = m_bytes[0];
  m_bytes[0] = static_cast<u8>(~original);
  u8 copy = 0;
  EXPECT_EQ(ntoshost::copyFromUser(&copy, addressOf(m_bytes), 1), 1u);
  EXPECT_EQ(copy, original);
  EXPECT_EQ(ntoshost::copyToUser(addressOf(m_bytes + 1), "x", 1), 1u);
  EXPECT_NE(m_bytes[1], 'x');
  EXPECT_EQ(ntoshost::copyFromUser(&copy, addressOf(m_bytes + 1), 1), 1u);
  EXPECT_EQ(copy, 'x');
}

TEST_F(OtherProcess, ItIsTheCurrentProcess) {
  ASSERT_TRUE(ntoshost::setUserProcess(m_child));
  EXPECT_EQ(ntoshost::getUserProcess(), m_child);
  EXPECT_EQ(reinterpret_cast<u64>(PsGetCurrentProcessId()), static_cast<u64>(m_child));
  ASSERT_TRUE(ntoshost::setUserProcess(0));
  EXPECT_EQ(ntoshost::getUserProcess(), getpid());
}

TEST_F(OtherProcess, OneThatIsGoneGivesNothing) {
  ASSERT_TRUE(ntoshost::setUserProcess(m_child));
  end();
  u8 copy = 0;
  EXPECT_EQ(ntoshost::copyFromUser(&copy, addressOf(m_bytes), 1), 0u);
}

// Threads are told apart, so a thread may serve a process while the others see to their own.
TEST_F(OtherProcess, ItIsThatOfOneThread) {
  ASSERT_TRUE(ntoshost::setUserProcess(m_child));
  m_bytes[0] = 'm';
  std::thread([&] {
    EXPECT_EQ(ntoshost::getUserProcess(), getpid());
    u8 copy = 0;
    EXPECT_EQ(ntoshost::copyFromUser(&copy, addressOf(m_bytes), 1), 1u);
    EXPECT_EQ(copy, 'm');
  }).join();
  EXPECT_EQ(ntoshost::getUserProcess(), m_child);
}

// The next process with the number is a fork of this one too, so all addresses are good in it.
TEST_F(OtherProcess, AnotherOneWithItsNumberIsNotTakenForIt) {
  ASSERT_TRUE(ntoshost::setUserProcess(m_child));
  pid_t const number = m_child;
  end();
  pid_t numbers[] = {number};
  clone_args arguments = {};
  arguments.exit_signal = SIGCHLD;
  arguments.set_tid = addressOf(numbers);
  arguments.set_tid_size = 1;
  long const next = syscall(SYS_clone3, &arguments, sizeof(arguments));
  if (next == 0) {
    pause();
    _exit(0);
  }
  ASSERT_EQ(next, number) << "choosing the number of a process needs root: " << strerror(errno);
  u8 copy = 0;
  EXPECT_EQ(ntoshost::copyFromUser(&copy, addressOf(m_bytes), 1), 0u);
  EXPECT_EQ(ntoshost::copyToUser(addressOf(m_bytes), &copy, 1), 0u);
  ASSERT_TRUE(ntoshost::setUserProcess(number));
  EXPECT_EQ(ntoshost::copyFromUser(&copy, addressOf(m_bytes), 1), 1u);
  kill(number, SIGKILL);
  waitpid(number, nullptr, 0);
}

TEST_F(OtherProcess, OneThatIsGoneCannotBeSet) {
  pid_t const gone = m_child;
  end();
  EXPECT_FALSE(ntoshost::setUserProcess(gone));
  EXPECT_EQ(ntoshost::getUserProcess(), getpid());
}

TEST(UserMemoryDeathTest, CopiesAreForApcLevelAndBelow) {
  KIRQL previous;
  KeRaiseIrql(DISPATCH_LEVEL, &previous);
  char byte = 0;
  EXPECT_DEATH(ntoshost::copyFromUser(&byte, addressOf(&byte), 1),
               "ntos: copyFromUser was called at IRQL 2");
  EXPECT_DEATH(ntoshost::copyToUser(addressOf(&byte), &byte, 1),
               "ntos: copyToUser was called at IRQL 2");
  KeLowerIrql(previous);
}

}  // namespace
