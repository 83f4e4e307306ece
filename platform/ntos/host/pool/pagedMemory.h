#pragma once

#include "ntos/types.h"

namespace ntoshost {

// Memory for the blocks of the paged pool. In the strict executive it lies on pages of its own with
// a protection key, which the processor refuses a thread while that is at DISPATCH_LEVEL or above,
// see ntoshost/pool.h. Where there are no such keys, and in the plain executive, it is the C
// library's.

// `size` bytes, aligned to 16; null when memory is exhausted. The caller has the pool's lock, here
// and there.
void* takePagedMemory(size_t size);
void givePagedMemory(void* memory, size_t size);

// The calling thread comes to DISPATCH_LEVEL or above, or leaves it.
void notePagingBorder(bool isAbove);

// A thread's first look at paged memory: system calls would fail on what a fault would be served
// for. Costs nothing from the second time on.
void preparePagedAccess();

// While it lives the calling thread may touch paged memory at any level: for the executive's own
// work, which the kernel does elsewhere.
class PagedAccess {
 public:
  PagedAccess();
  ~PagedAccess();
  PagedAccess(PagedAccess const&) = delete;
  PagedAccess& operator=(PagedAccess const&) = delete;

 private:
  [[maybe_unused]] bool const m_wasShut;  // the strict executive's
};

}  // namespace ntoshost
