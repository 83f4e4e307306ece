#include "ntos/pool.h"

#include <stdlib.h>

// All kinds of pool are the memory of the language's runtime.

void* ExAllocatePoolWithTag(POOL_TYPE, size_t size, u32) {
  return malloc(size);
}

void ExFreePoolWithTag(void* block, u32) {
  free(block);
}
