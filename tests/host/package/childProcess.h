#pragma once

// A process for what may crash, and for what must be the first thing in a program.

#include <sys/wait.h>
#include <unistd.h>

// Runs `body` in a child and returns its result, or -1 when it ended in another way.
template <class Body>
int inAProcess(Body body) {
  pid_t const child = fork();
  if (child == 0) _exit(body());
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
