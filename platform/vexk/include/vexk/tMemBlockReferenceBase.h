#pragma once

// The owner of one block of the family's memory.

#include "compiler/types.h"
#include "vexk/api.h"
#include "vexk/memory.h"

// Owns one block from _memNewUsingCRT, or none, and gives it back at the end of its life. Not
// copyable; moving takes the block and leaves the other reference empty. Not locked. IRQL as for
// the block (see "vexk/memory.h").
class VEX_API tMemBlockReferenceBase {
 public:
  constexpr tMemBlockReferenceBase() = default;
  tMemBlockReferenceBase(tMemBlockReferenceBase&& other) noexcept;
  tMemBlockReferenceBase& operator=(tMemBlockReferenceBase&& other) noexcept;
  tMemBlockReferenceBase(tMemBlockReferenceBase const&) = delete;
  tMemBlockReferenceBase& operator=(tMemBlockReferenceBase const&) = delete;
  ~tMemBlockReferenceBase();

  // Takes a block of `size` bytes (0 is a block too). The block owned before is given back when the
  // new one is there; on failure it stays, and `status` gets kStatusOutOfMemory. A negative
  // `status` on entry is kept and nothing changes.
  void allocate(size_t size, tMemAllocationFlags flags, i32& status);

  // Gives the block back; afterwards the reference is empty.
  void release();

  // The block's address, null when there is none. The reference keeps it.
  void* getAddress() const { return address; }

  // The size in bytes that was asked for; 0 when there is no block.
  size_t getSize() const { return size; }

 private:
  void* address = nullptr;
  size_t size = 0;
};
