#include "tAnsweringProcess.h"

#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include "vexkhost/requestServer.h"

tAnsweringProcess::tAnsweringProcess()
    : path("/tmp/oxdiag-bench-" + std::to_string(getpid()) + ".socket") {
  int ends[2];
  if (socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0) return;
  asking[0] = asking[1] = ends[0];
  answering[0] = answering[1] = ends[1];
  start(serveRequests);
  ask();
}

tAnsweringProcess::tAnsweringProcess(tFloor kind, size_t sizeOfMessage, size_t sizeOfAnswer)
    : messageSize(sizeOfMessage), answerSize(sizeOfAnswer) {
  int there[2];
  int back[2];
  if (kind == tFloor::kSocket) {
    if (socketpair(AF_UNIX, SOCK_SEQPACKET, 0, there) != 0) return;
    asking[0] = asking[1] = there[0];
    answering[0] = answering[1] = there[1];
  } else {
    if (pipe(there) != 0 || pipe(back) != 0) return;
    asking[0] = back[0];
    asking[1] = there[1];
    answering[0] = there[0];
    answering[1] = back[1];
  }
  start(echo);
}

tAnsweringProcess::~tAnsweringProcess() {
  close(asking[0]);
  if (asking[1] != asking[0]) close(asking[1]);
  if (child > 0) waitpid(child, nullptr, 0);
}

void tAnsweringProcess::start(void (*answer)(tAnsweringProcess const& self)) {
  child = fork();
  if (child == 0) {
    close(asking[0]);
    if (asking[1] != asking[0]) close(asking[1]);
    answer(*this);
    _exit(0);
  }
  close(answering[0]);
  if (answering[1] != answering[0]) close(answering[1]);
}

// The first question is answered when the server listens; there is no second one.
void tAnsweringProcess::serveRequests(tAnsweringProcess const& self) {
  bool const isServing = vexkhost::startRequestServer(self.path.c_str());
  if (isServing) echo(self);
  vexkhost::stopRequestServer();
}

void tAnsweringProcess::echo(tAnsweringProcess const& self) {
  char buffer[kMostBytes] = {};
  while (read(self.answering[0], buffer, self.messageSize) > 0) {
    if (write(self.answering[1], buffer, self.answerSize) < 0) return;
  }
}

bool tAnsweringProcess::ask() {
  char buffer[kMostBytes] = {};
  ssize_t const sent = write(asking[1], buffer, messageSize);
  ssize_t const got = read(asking[0], buffer, answerSize);
  return sent == static_cast<ssize_t>(messageSize) && got == static_cast<ssize_t>(answerSize);
}
