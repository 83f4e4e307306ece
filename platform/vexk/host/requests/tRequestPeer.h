#pragma once

#include <sys/types.h>

// The process at the other end of a connection, as the kernel names it.
class tRequestPeer {
 public:
  constexpr tRequestPeer() = default;

  // Asks who has connected and holds on to that process until `close`. False, and nothing is held,
  // when the process is gone or none of this system's.
  bool identify(int connection);
  void close();  // once, of what is held

  bool isServed() const;  // the user of this program, or root
  bool isAlive() const;
  pid_t getProcess() const { return process; }
  uid_t getUser() const { return user; }

 private:
  pid_t process = 0;
  uid_t user = 0;
  int descriptor = -1;
};
