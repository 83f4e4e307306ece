#pragma once

#include "ntos/types.h"

namespace ntoshost {

// A run of mapped memory.
struct StackBounds {
  u64 low;
  u64 high;  // the first address behind it

  bool contains(u64 address) const { return address >= low && address < high; }
};

// The mapping of the calling thread's stack that contains `address`; empty when there is none.
// Found once for a thread, by system calls alone: nothing is allocated, no lock is taken.
StackBounds findStackBounds(u64 address);

}  // namespace ntoshost
