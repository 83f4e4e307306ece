#pragma once

#include "ntos/types.h"

namespace nOXDIAG100 {

class tTraceParts;

// The lock under which trace streams are configured: one for all of them, because streams share
// destinations. It is recursive and lies in static storage. Lines never wait for it.
//
// Order of locks: this one, then the line lock of a stream. IRQL <= APC_LEVEL.
class tStreamLock {
 public:
  // Waits for the lock. False when the wait is given up: the thread that holds the lock does not
  // come out of a put for kMostPatience. The event log names that thread then.
  static bool acquire();

  static void release();
};

// Holds the lock for a scope of an operation of a stream.
class tStreamGuard {
 public:
  explicit tStreamGuard(tTraceParts const& stream);
  ~tStreamGuard() {
    if (isOwner) tStreamLock::release();
  }
  tStreamGuard(tStreamGuard const&) = delete;
  tStreamGuard& operator=(tStreamGuard const&) = delete;

  // Whether the operation may go on: the lock is held, and the stream is there.
  bool isHeld() const { return isHeldOnStream; }

 private:
  bool const isOwner;
  bool const isHeldOnStream;
};

}  // namespace nOXDIAG100
