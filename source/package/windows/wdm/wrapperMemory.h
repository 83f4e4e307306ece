#pragma once

// Kernel pool of the driver wrapper: what it keeps, and what it hands to whoever asks a device.

#include "ntos/pool.h"

namespace nOXDIAG100 {

constexpr u32 kWrapperTag = ntosPoolTag("vex ");
constexpr u32 kChildTag = ntosPoolTag("chld");

// Gives back what another driver has taken and put into a request, under whatever tag.
constexpr u32 kAnyTag = 0;

// Paged memory for an answer, which the asker gives back; null when memory is exhausted.
// IRQL <= APC_LEVEL.
inline void* allocateAnswer(size_t bytes) {
  return ExAllocatePoolWithTag(PagedPool, bytes, kWrapperTag);
}

// The same with a copy of `source` in it.
inline void* copyToAnswer(void const* source, size_t bytes) {
  void* const answer = allocateAnswer(bytes);
  if (answer != nullptr) __builtin_memcpy(answer, source, bytes);
  return answer;
}

}  // namespace nOXDIAG100
