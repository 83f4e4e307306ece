#pragma once

#include <sys/types.h>

#include "host/requests/tThreadLock.h"
#include "ntos/types.h"

// Reads and writes the memory of a calling process, in a thread of its own. A copy waits for pages
// that are not there, which their owner may never deliver, and nothing but the end of the program
// interrupts it. So nobody waits for the copy: whoever wants it waits for the courier, and goes on
// without when that takes too long. A courier who was left behind touches its own memory alone, and
// frees it when it comes back. Few can be left behind: a process that has left one gets no other,
// and a user who has left many neither, until one of them is back.
//
// The thread that hires a courier is the one that uses and dismisses it; `hurry`, `giveUp` and
// `getWaitingTime` are for any thread until then.
class tMemoryCourier {
 public:
  static constexpr u32 kHurriedPatience = 400;  // milliseconds for all copies once there is a hurry
  static constexpr u32 kHurriedEnd = 500;       // and from then until there are none

  // A courier for the memory of this process of that user, which the copies of the calling thread
  // use from then on. Null when the system has no memory or no thread for it, or when too many were
  // left behind.
  static tMemoryCourier* hire(pid_t process, uid_t user);

  // The one that the calling thread has hired; null without.
  static tMemoryCourier* ofThisThread();

  // Ends it; it must not be used afterwards.
  void dismiss();

  // Before the first copy: false when the process is gone or its memory may not be touched.
  bool reach();

  // As vexCopyFromUser and vexCopyToUser, but after kRequestMemoryPatience a copy ends without its
  // rest, and all later ones copy nothing.
  size_t fetch(void* to, u64 userAddress, size_t length);
  size_t bring(u64 userAddress, void const* from, size_t length);

  // From now on all copies together may take kHurriedPatience, those of memory that is there not
  // counted. After kHurriedEnd nothing is copied, whether it is there or not.
  void hurry();

  // Ends the copy that is under way, and all later ones, without a result.
  void giveUp();

  // For how many milliseconds the copy that is under way has been; 0 when none is.
  u32 getWaitingTime();

 private:
  enum tErrand { kReach, kFetch, kBring };
  static constexpr size_t kLoadSize = 16384;  // bytes carried at once

  tMemoryCourier(pid_t target, uid_t owner);

  static bool mayBeHired(pid_t process, uid_t user);
  void addToAway();
  void removeFromAway();

  static void* run(void* courier);
  void work();
  size_t runErrand();
  size_t send(tErrand newErrand, u64 userAddress, size_t length);
  bool isTooLate() const;
  u64 getDeadline() const;
  void countWaiting();
  void release();

  pid_t const process;
  uid_t const user;
  tMemoryCourier* nextAway = nullptr;  // among those that were left behind
  pthread_t thread = {};
  u32 references = 2;  // atomic: of the thread and of who has hired it

  tThreadLock lock;  // of all below
  pthread_cond_t changed = PTHREAD_COND_INITIALIZER;
  bool isUnderWay = false;
  bool isDismissed = false;
  bool isLost = false;  // nobody waits for it any more
  bool isHurried = false;
  u64 begun = 0;  // nanoseconds on the monotonic clock, as the next two
  u64 hurriedSince = 0;
  u64 hurriedLeft = 0;
  tErrand errand = kReach;  // this and the rest is the thread's own while it is under way
  u64 address = 0;
  size_t wanted = 0;
  size_t carried = 0;
  u8 load[kLoadSize];
};
