#include "host/requests/tRequestPeer.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

// Without an answer it is the process 0, which there is none of.
bool tRequestPeer::identify(int connection) {
  ucred who = {};
  socklen_t size = sizeof(who);
  getsockopt(connection, SOL_SOCKET, SO_PEERCRED, &who, &size);
  process = who.pid;
  user = who.uid;
  descriptor = static_cast<int>(syscall(SYS_pidfd_open, process, 0));
  return descriptor >= 0;
}

void tRequestPeer::close() {
  ::close(descriptor);
}

bool tRequestPeer::isServed() const {
  return user == geteuid() || user == 0;
}

bool tRequestPeer::isAlive() const {
  pollfd watched = {descriptor, POLLIN, 0};
  return poll(&watched, 1, 0) == 0;
}
