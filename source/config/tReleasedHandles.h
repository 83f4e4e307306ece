#pragma once

// The handles released last, which are not to be issued again at once. No lock of its own.

#include "oxdiagk/api.h"
#include "stl/vector.h"

namespace nOXDIAG100 {

// A ring of 15 slots, with zeros, which are no handles, at the start.
class OXDIAG_API tReleasedHandles {
 public:
  static constexpr size_t kSlots = 15;

  // Takes the slots from the long-lived memory.
  tReleasedHandles();

  // False when memory was exhausted: then nothing else may be called.
  bool hasSlots() const { return !slots.empty(); }

  // Remembers `handle` in place of the one remembered longest.
  void add(u32 handle);

  bool contains(u32 handle) const;

 private:
  _STL::vector<u32> slots;
  size_t cursor = 0;  // where the next one goes
};

}  // namespace nOXDIAG100
