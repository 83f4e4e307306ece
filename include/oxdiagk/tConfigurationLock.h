#pragma once

#include "compiler/types.h"

namespace nOXDIAG100 {

// Chooses the constructor of a module's one object as it is before and after its life.
struct tAtRest {};

// What serialises the configuration of one object. A thread that holds it may take it again, so an
// operation that configures may call others that do. It is taken by configuring alone: whoever
// writes lines or checks contracts never waits for it.
//
// Its object lies in non-paged memory. IRQL <= APC_LEVEL; the kernel may be asked to open files
// while it is held, which a fast mutex would forbid.
class tConfigurationLock {
 public:
  tConfigurationLock();
  // A lock that nobody may take.
  explicit tConfigurationLock(tAtRest) : mutex() {}
  tConfigurationLock(tConfigurationLock const&) = delete;
  tConfigurationLock& operator=(tConfigurationLock const&) = delete;

 private:
  friend class tConfigurationGuard;

  alignas(8) u8 mutex[56];  // a kernel mutex
};

}  // namespace nOXDIAG100
