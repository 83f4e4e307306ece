// The lock of all trace streams is made by the first who asks for it. One who is suspended while it
// makes the lock holds up nobody else.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "ntoshost/thread.h"
#include "trace/tStreamLock.h"

namespace {

using nOXDIAG100::tStreamLock;

constexpr int kIsAsked = 7;
constexpr int kIsNotAsked = 8;

void useLock() {
  if (tStreamLock::acquire()) tStreamLock::release();
}

// A program in which nobody has asked for the lock yet; returns its exit code, -1 if it has none.
int makeSuspendedAt(u64 n) {
  pid_t const child = fork();
  if (child == 0) _exit(ntoshost::suspendAt(n, useLock, useLock) ? kIsAsked : kIsNotAsked);
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace

TEST(StreamLockMaking, ASuspendedMakerHoldsUpNobody) {
  u64 n = 1;
  int code = makeSuspendedAt(n);
  while (code == kIsAsked) code = makeSuspendedAt(++n);
  EXPECT_EQ(code, kIsNotAsked) << "at call " << n;
  EXPECT_GE(n, 5u);
}
