#include "vexk/userMemory.h"

#include "host/requests/tMemoryCourier.h"
#include "ntoshost/executive.h"

// A thread of the request server has somebody who copies for it.

size_t vexCopyFromUser(void* to, u64 userAddress, size_t length) {
  tMemoryCourier* const courier = tMemoryCourier::ofThisThread();
  if (courier != nullptr) return courier->fetch(to, userAddress, length);
  return ntoshost::copyFromUser(to, userAddress, length);
}

size_t vexCopyToUser(u64 userAddress, void const* from, size_t length) {
  tMemoryCourier* const courier = tMemoryCourier::ofThisThread();
  if (courier != nullptr) return courier->bring(userAddress, from, length);
  return ntoshost::copyToUser(userAddress, from, length);
}
