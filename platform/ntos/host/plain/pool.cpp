#include "ntos/pool.h"

#include <malloc.h>
#include <stdlib.h>

#include "ntoshost/faults.h"
#include "pool/answers.h"

// The pool is the C library's memory, aligned to 16 bytes as that is.

namespace ntoshost {

bool isPagedBlock(void const*) {
  return false;
}

size_t requireAnswer(void const* answer, char const*) {
  return malloc_usable_size(const_cast<void*>(answer));
}

void freeAnswer(void* answer, char const*) {
  free(answer);
}

}  // namespace ntoshost

void* ExAllocatePoolWithTag(POOL_TYPE, size_t size, u32) {
  return ntoshost::injectFault(ntoshost::kFaultMemory) ? nullptr : malloc(size);
}

void ExFreePoolWithTag(void* data, u32) {
  free(data);
}
