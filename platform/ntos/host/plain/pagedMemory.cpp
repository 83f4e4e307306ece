#include "pool/pagedMemory.h"

#include <stdlib.h>

#include "faultHandler.h"
#include "ntoshost/pool.h"

namespace ntoshost {

void* takePagedMemory(size_t size) {
  return aligned_alloc(16, size);
}

void givePagedMemory(void* memory, size_t) {
  free(memory);
}

void notePagingBorder(bool) {
}

void preparePagedAccess() {
}

PagedAccess::PagedAccess() : m_wasShut(false) {
}

PagedAccess::~PagedAccess() {
}

bool servePagedFault(u64, u32, void*) {
  return false;
}

bool isPagedPoolGuarded() {
  return false;
}

}  // namespace ntoshost
