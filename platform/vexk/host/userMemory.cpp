#include "vexk/userMemory.h"

#include "ntoshost/executive.h"

size_t vexCopyFromUser(void* to, u64 userAddress, size_t length) {
  return ntoshost::copyFromUser(to, userAddress, length);
}

size_t vexCopyToUser(u64 userAddress, void const* from, size_t length) {
  return ntoshost::copyToUser(userAddress, from, length);
}
