#pragma once

// A lock for a few instructions at DISPATCH_LEVEL. All zeros are a free one.

#include "ntos/irql.h"

namespace nOXDIAG100 {

class tSpinLock {
 public:
  // The thread runs at DISPATCH_LEVEL until the guard goes. IRQL <= DISPATCH_LEVEL.
  class tGuard {
   public:
    explicit tGuard(tSpinLock& spinLock) : lock(spinLock) {
      KeRaiseIrql(DISPATCH_LEVEL, &before);
      while (__atomic_exchange_n(&lock.isTaken, true, __ATOMIC_ACQUIRE)) __builtin_ia32_pause();
    }
    ~tGuard() {
      __atomic_store_n(&lock.isTaken, false, __ATOMIC_RELEASE);
      KeLowerIrql(before);
    }
    tGuard(tGuard const&) = delete;
    tGuard& operator=(tGuard const&) = delete;

   private:
    tSpinLock& lock;
    KIRQL before = PASSIVE_LEVEL;
  };

 private:
  bool isTaken = false;
};

}  // namespace nOXDIAG100
