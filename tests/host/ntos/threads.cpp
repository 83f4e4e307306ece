// Who the calling thread is.

#include "ntos/thread.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <thread>

#include "ntoshost/thread.h"

namespace {

u64 currentId() {
  return reinterpret_cast<u64>(PsGetCurrentThreadId());
}

TEST(Thread, ItsIdIsTheSystemsAndStays) {
  EXPECT_EQ(currentId(), static_cast<u64>(gettid()));
  EXPECT_EQ(currentId(), currentId());
}

TEST(Thread, EachThreadHasItsOwn) {
  u64 other = 0;
  std::thread([&] { other = currentId(); }).join();
  EXPECT_NE(other, 0u);
  EXPECT_NE(other, currentId());
}

TEST(Thread, AnIdCanBeGivenToTheCallingThreadAlone) {
  ntoshost::overrideCurrentThreadId(0xFFFFFFFF);
  EXPECT_EQ(currentId(), 0xFFFFFFFFu);
  u64 other = 0;
  std::thread([&] { other = currentId(); }).join();
  EXPECT_NE(other, 0xFFFFFFFFu);
  ntoshost::overrideCurrentThreadId(0);
  EXPECT_EQ(currentId(), static_cast<u64>(gettid()));
}

TEST(Thread, TheChildOfAForkHasAnIdOfItsOwn) {
  u64 const parentId = currentId();
  pid_t const child = fork();
  if (child == 0) _exit(currentId() == parentId ? 1 : 0);
  int status = -1;
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
}

TEST(Thread, RunsOnAProcessorOfTheMachine) {
  EXPECT_LT(KeGetCurrentProcessorNumberEx(nullptr),
            static_cast<u32>(sysconf(_SC_NPROCESSORS_CONF)));
}

TEST(Process, TheCurrentOneIsThisProcess) {
  EXPECT_EQ(reinterpret_cast<u64>(PsGetCurrentProcessId()), static_cast<u64>(getpid()));
  EXPECT_NE(PsGetCurrentProcess(), nullptr);
  EXPECT_EQ(PsGetCurrentProcess(), PsGetCurrentProcess());
}

}  // namespace
