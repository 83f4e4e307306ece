#pragma once

// An image loads once in its life, so every load of a test has a process of its own.

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
