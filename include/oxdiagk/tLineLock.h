#pragma once

#include "compiler/types.h"
#include "oxdiagk/api.h"
#include "oxdiagk/atomicWord.h"

class iSync;

namespace nOXDIAG100 {

// What makes a line its thread's: the platform's lock, once it is opened, and who has it. Part of
// tTrace, of use to nobody else.
//
// begin, end and get are for any thread at IRQL <= APC_LEVEL; open and close, and whoever counts
// holders, are under the lock that all streams configure under.
class OXDIAG_API tLineLock {
 public:
  enum tStart { kLocked, kNotLocked, kTimedOut };

  // `sync` and the two halves of `token` are members of the stream.
  tLineLock(iSync*& sync, u32 const (&token)[2]) : sync(sync), token(token) {}
  tLineLock(tLineLock const&) = delete;
  tLineLock& operator=(tLineLock const&) = delete;

  // Opens the platform's lock, unless it is open; does nothing when it cannot be opened. Once
  // opened it stays until close, so whoever has seen it may use it.
  void open();

  // Gives back what this thread has, and closes the lock.
  void close();

  iSync* get() const { return loadAcquire(sync); }

  // Between them a line belongs to the calling thread, if there is a lock. `timeout` in
  // milliseconds, or kSyncWaitForever. end gives back what this thread's begin took.
  tStart begin(u32 timeout);
  void end() {
    if (get() != nullptr) giveBack();
  }

  // The thread that has the lock for its line; 0 when there is none.
  u32 getOwner() const;

  // Whether both, once opened, are the same lock of the platform: tokens that came later count at
  // the next open.
  bool isSharedWith(tLineLock const& other) const {
    return openedBy[0] == other.openedBy[0] && openedBy[1] == other.openedBy[1];
  }

  u32 holders = 0;  // a bit for each tStreamHold that has the lock

 private:
  void giveBack();

  iSync*& sync;
  u32 const (&token)[2];
  u32 openedBy[2] = {0, 0};  // the token of the lock that is open
  u32 owner = 0;             // thread whose lines have the lock, while depth is not 0
  u32 depth = 0;
};

}  // namespace nOXDIAG100
