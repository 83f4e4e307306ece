#pragma once

// Which allocations of an operation fail: for the library, and for a model that counts along.

#include "ntoshost/faults.h"

class tModelMemory {
 public:
  // The nth allocation of the next operation fails, and the later ones too when it is `isLasting`.
  void failAt(u64 n, bool isLastingFailure) {
    nth = n;
    isLasting = isLastingFailure;
  }

  // Begins the operation.
  void arm() {
    calls = 0;
    if (nth == 0) return;
    if (isLasting) ntoshost::failFrom(ntoshost::kFaultMemory, nth);
    if (!isLasting) ntoshost::failNth(ntoshost::kFaultMemory, nth);
  }

  // Ends it: no call fails any more.
  void end() {
    ntoshost::clearFaults();
    nth = 0;
  }

  // The model's allocation: false when the library's fails.
  bool allocate() {
    ++calls;
    return nth == 0 || (isLasting ? calls < nth : calls != nth);
  }

 private:
  u64 nth = 0;  // 0 for none
  bool isLasting = false;
  u64 calls = 0;
};
