#pragma once

#include "ntos/types.h"
#include "trace/tPatience.h"

namespace nOXDIAG100 {

// Sees whether a thread that others wait for is stuck in a put. Each look asks whether the thread
// is within one. It is stuck when every look of kMostPatience has found it there; a look that does
// not, and one at another thread, begin anew. Any IRQL, one thread.
//
//     tPutWatch watch;
//     while (!isTakenWithin(tPutWatch::kBetweenLooks)) {
//       watch.look(getOwner());
//       if (watch.isOver()) return false;
//     }
class tPutWatch {
 public:
  static constexpr u32 kBetweenLooks = 100;  // milliseconds

  // A look at the thread that is waited for, kBetweenLooks after the one before; 0: nobody.
  void look(u32 thread);

  bool isOver() const { return stuck != 0 && patience.isOver(); }
  bool hasPassed() const { return stuck != 0 && patience.hasPassed(); }

 private:
  tPatience patience;
  u32 stuck = 0;  // the thread that the last look has found within a put
};

}  // namespace nOXDIAG100
