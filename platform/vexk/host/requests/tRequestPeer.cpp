#include "host/requests/tRequestPeer.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

bool tRequestPeer::identify(int connection) {
  ucred who = {};
  socklen_t size = sizeof(who);
  if (getsockopt(connection, SOL_SOCKET, SO_PEERCRED, &who, &size) != 0) return false;
  process = who.pid;
  user = who.uid;
  descriptor = process > 0 ? static_cast<int>(syscall(SYS_pidfd_open, process, 0)) : kNone;
  return descriptor != kNone;
}

void tRequestPeer::close() {
  if (descriptor != kNone) ::close(descriptor);
  descriptor = kNone;
}

bool tRequestPeer::isServed() const {
  return user == geteuid() || user == 0;
}

bool tRequestPeer::isAlive() const {
  pollfd watched = {descriptor, POLLIN, 0};
  return poll(&watched, 1, 0) == 0;
}
