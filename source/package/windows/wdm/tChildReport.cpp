#include "package/windows/wdm/tChildReport.h"

#include "package/windows/wdm/wrapperMemory.h"

namespace nOXDIAG100 {

tChildReport::~tChildReport() {
  if (children != nullptr) ExFreePoolWithTag(children, kWrapperTag);
}

bool tChildReport::reserve(u32 capacity) {
  if (capacity == 0) return true;
  // NOLINTNEXTLINE(bugprone-sizeof-expression): pointers are what it keeps.
  size_t const size = capacity * sizeof(tChildDevice*);
  children = static_cast<tChildDevice**>(ExAllocatePoolWithTag(PagedPool, size, kWrapperTag));
  return children != nullptr;
}

void tChildReport::add(tChildDevice& child) {
  ObfReferenceObject(child.device);
  child.beginReport();
  children[count++] = &child;
}

tChildDevice* tChildReport::take() {
  return count == 0 ? nullptr : children[--count];
}

}  // namespace nOXDIAG100
