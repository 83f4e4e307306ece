// Guarded copies where the memory ends.

#include "vexk/userMemory.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>

#include "ntoshost/executive.h"

namespace {

constexpr size_t kPage = 4096;
constexpr size_t kTail = 10;

// One page that can be used in front of one that has another protection.
class tTwoPages {
 public:
  explicit tTwoPages(int secondProtection)
      : first(static_cast<char*>(
            mmap(nullptr, 2 * kPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))) {
    for (size_t i = 0; i < 2 * kPage; ++i) first[i] = static_cast<char>('a' + i % 26);
    mprotect(first + kPage, kPage, secondProtection);
  }
  ~tTwoPages() { munmap(first, 2 * kPage); }
  tTwoPages(tTwoPages const&) = delete;
  tTwoPages& operator=(tTwoPages const&) = delete;

  char* end() const { return first + kPage; }
  u64 userEnd() const { return reinterpret_cast<u64>(end()); }

 private:
  char* first;
};

// A process with a text of its own at the address of `text`, which waits to be read.
class tOtherProcess {
 public:
  explicit tOtherProcess(char* text) : pid(fork()) {
    if (pid != 0) {
      waitpid(pid, nullptr, WUNTRACED);
      return;
    }
    std::memcpy(text, "theirs", sizeof "theirs");
    raise(SIGSTOP);
    _exit(0);
  }
  ~tOtherProcess() {
    kill(pid, SIGKILL);
    waitpid(pid, nullptr, 0);
  }
  tOtherProcess(tOtherProcess const&) = delete;
  tOtherProcess& operator=(tOtherProcess const&) = delete;

  pid_t const pid;
};

}  // namespace

TEST(VexkHostUserMemory, ReadingStopsAtAPageThatIsNotThere) {
  tTwoPages const pages(PROT_NONE);
  char target[2 * kTail];
  std::memset(target, '?', sizeof target);
  EXPECT_EQ(kTail, vexCopyFromUser(target, pages.userEnd() - kTail, sizeof target));
  EXPECT_EQ(0, std::memcmp(target, pages.end() - kTail, kTail));
  for (size_t i = kTail; i < sizeof target; ++i) EXPECT_EQ('?', target[i]) << i;
}

TEST(VexkHostUserMemory, ReadingUpToTheEndOfThePageIsWhole) {
  tTwoPages const pages(PROT_NONE);
  char target[kTail];
  EXPECT_EQ(kTail, vexCopyFromUser(target, pages.userEnd() - kTail, kTail));
  EXPECT_EQ(0u, vexCopyFromUser(target, pages.userEnd(), 1));
}

TEST(VexkHostUserMemory, WritingStopsAtAPageThatIsNotThere) {
  tTwoPages const pages(PROT_NONE);
  char source[2 * kTail];
  std::memset(source, '!', sizeof source);
  EXPECT_EQ(kTail, vexCopyToUser(pages.userEnd() - kTail, source, sizeof source));
  EXPECT_EQ(0, std::memcmp(source, pages.end() - kTail, kTail));
  EXPECT_NE('!', pages.end()[-static_cast<ptrdiff_t>(kTail) - 1]);
}

TEST(VexkHostUserMemory, WritingStopsAtAPageThatIsReadOnly) {
  tTwoPages const pages(PROT_READ);
  char source[2 * kTail];
  std::memset(source, '!', sizeof source);
  EXPECT_EQ(kTail, vexCopyToUser(pages.userEnd() - kTail, source, sizeof source));
  EXPECT_EQ('!', pages.end()[-1]);
  EXPECT_NE('!', pages.end()[0]);
}

TEST(VexkHostUserMemory, AReadOnlyPageCanBeRead) {
  tTwoPages const pages(PROT_READ);
  char target[2 * kTail];
  EXPECT_EQ(sizeof target, vexCopyFromUser(target, pages.userEnd() - kTail, sizeof target));
  EXPECT_EQ(0, std::memcmp(target, pages.end() - kTail, sizeof target));
}

TEST(VexkHostUserMemory, AnInjectedFaultCopiesNothing) {
  char const source[] = "text";
  char target[sizeof source] = {};
  ntoshost::failFrom(ntoshost::kFaultUserCopy, 1);
  EXPECT_EQ(0u, vexCopyFromUser(target, reinterpret_cast<u64>(source), sizeof source));
  EXPECT_EQ(0u, vexCopyToUser(reinterpret_cast<u64>(target), source, sizeof source));
  ntoshost::clearFaults();
  EXPECT_EQ('\0', target[0]);
}

TEST(VexkHostUserMemory, ServesAnotherProcess) {
  static char text[16] = "ours";
  tOtherProcess const other(text);
  char seen[16] = {};
  ASSERT_TRUE(ntoshost::setUserProcess(other.pid));
  EXPECT_EQ(sizeof seen, vexCopyFromUser(seen, reinterpret_cast<u64>(text), sizeof seen));
  EXPECT_EQ(4u, vexCopyToUser(reinterpret_cast<u64>(text), "new", 4));
  char written[4] = {};
  EXPECT_EQ(4u, vexCopyFromUser(written, reinterpret_cast<u64>(text), 4));
  ASSERT_TRUE(ntoshost::setUserProcess(0));
  EXPECT_STREQ("theirs", seen);
  EXPECT_STREQ("new", written);
  EXPECT_STREQ("ours", text);
}
