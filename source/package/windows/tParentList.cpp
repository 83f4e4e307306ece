#include "package/windows/tParentList.h"

#include "vexk/tFastMutexGuard.h"

namespace nOXDIAG100 {

void tParentList::initialise() {
  ExInitializeFastMutex(&mutex);
  parents.initialise();
  isReady = true;
}

tParentDevice* tParentList::find(DEVICE_OBJECT const& device) {
  if (!isReady) return nullptr;
  tFastMutexGuard const guard(mutex);
  tParentDevice* parent = parents.first();
  while (parent != nullptr && &parent->getDevice() != &device) parent = parents.next(*parent);
  return parent;
}

tParentDevice* tParentList::create(DEVICE_OBJECT& device) {
  tParentDevice* const parent = isReady ? tParentDevice::create(device) : nullptr;
  if (parent == nullptr) return nullptr;
  tFastMutexGuard const guard(mutex);
  parents.append(*parent);
  return parent;
}

void tParentList::remove(tParentDevice& parent) {
  tFastMutexGuard const guard(mutex);
  parents.remove(parent);
}

}  // namespace nOXDIAG100
