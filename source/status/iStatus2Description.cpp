#include "oxdiagk/iStatus2Description.h"

#include "status/statusMemory.h"

QELM_DEFINE_INTERFACE(nOXDIAG100::iStatus2Description, "nOXDIAG100::iStatus2Description")

namespace nOXDIAG100 {
namespace {

void* take(size_t size) {
  i32 status = 0;
  return takeStatusMemory(size, status);
}

void* take(size_t size, i32* status) {
  if (status == nullptr) return take(size);
  if (*status < 0) return nullptr;
  void* const block = take(size);
  if (block == nullptr) *status = kStatusOutOfMemory;
  return block;
}

}  // namespace

void* iStatus2Description::operator new(size_t size) noexcept {
  return take(size);
}

void* iStatus2Description::operator new[](size_t size) noexcept {
  return take(size);
}

void* iStatus2Description::operator new(size_t size, tMemAllocationFlags /*flags*/) noexcept {
  return take(size);
}

void* iStatus2Description::operator new[](size_t size, tMemAllocationFlags /*flags*/) noexcept {
  return take(size);
}

void* iStatus2Description::operator new(size_t size, tMemAllocationFlags /*flags*/,
                                        i32* status) noexcept {
  return take(size, status);
}

void* iStatus2Description::operator new[](size_t size, tMemAllocationFlags /*flags*/,
                                          i32* status) noexcept {
  return take(size, status);
}

void iStatus2Description::operator delete(void* block) noexcept {
  giveStatusMemoryBack(block);
}

void iStatus2Description::operator delete[](void* block) noexcept {
  giveStatusMemoryBack(block);
}

void iStatus2Description::toString(char* buffer, u32 size) const {
  if (buffer != nullptr && size != 0) buffer[0] = '\0';
}

}  // namespace nOXDIAG100
