#pragma once

// Other processes, and signals between them.

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

// A process that runs `body`, whose result is its exit code.
class tChild {
 public:
  template <class tBody>
  explicit tChild(tBody body) : pid(fork()) {
    if (pid == 0) _exit(body());
  }
  ~tChild() {
    if (pid > 0) await();
  }
  tChild(tChild const&) = delete;
  tChild& operator=(tChild const&) = delete;

  // The exit code; negative when a signal ended it.
  int await() {
    int status = 0;
    waitpid(pid, &status, 0);
    pid = 0;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  pid_t pid;
};

// A pipe over which one process lets another go on.
class tSignal {
 public:
  tSignal() { EXPECT_EQ(pipe(ends), 0); }
  ~tSignal() {
    close(ends[0]);
    close(ends[1]);
  }
  tSignal(tSignal const&) = delete;
  tSignal& operator=(tSignal const&) = delete;

  bool give() const { return write(ends[1], "x", 1) == 1; }

  // Whether it is given, within a minute: who should give it may have failed.
  bool await() const {
    pollfd watched = {ends[0], POLLIN, 0};
    char byte;
    return poll(&watched, 1, 60'000) == 1 && read(ends[0], &byte, 1) == 1;
  }

 private:
  int ends[2];
};
