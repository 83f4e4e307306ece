#include "vexk/tMemBlockReferenceBase.h"

tMemBlockReferenceBase::tMemBlockReferenceBase(tMemBlockReferenceBase&& other) noexcept
    : address(other.address), size(other.size) {
  other.address = nullptr;
  other.size = 0;
}

tMemBlockReferenceBase& tMemBlockReferenceBase::operator=(tMemBlockReferenceBase&& other) noexcept {
  if (this == &other) return *this;
  release();
  address = other.address;
  size = other.size;
  other.address = nullptr;
  other.size = 0;
  return *this;
}

tMemBlockReferenceBase::~tMemBlockReferenceBase() {
  release();
}

void tMemBlockReferenceBase::allocate(size_t newSize, tMemAllocationFlags flags, i32& status) {
  void* block = _memNewUsingCRT(newSize, flags, status);
  if (block == nullptr) return;
  release();
  address = block;
  size = newSize;
}

void tMemBlockReferenceBase::release() {
  _memDelete(address);
  address = nullptr;
  size = 0;
}
