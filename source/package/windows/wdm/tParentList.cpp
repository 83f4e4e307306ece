#include "package/windows/wdm/tParentList.h"

#include "vexkntos/tFastMutexGuard.h"

namespace nOXDIAG100 {

constinit tParentList wdmParents;

void tParentList::initialise() {
  tSpinLock::tGuard const guard(initialising);
  if (isReady) return;
  ExInitializeFastMutex(&mutex);
  parents.initialise();
  __atomic_store_n(&isReady, true, __ATOMIC_RELEASE);
}

tParentDevice* tParentList::find(DEVICE_OBJECT const& device) {
  tParentDevice* parent = parents.first();
  while (parent != nullptr && &parent->getDevice() != &device) parent = parents.next(*parent);
  return parent;
}

tParentDevice* tParentList::enter(DEVICE_OBJECT const& device) {
  tParentDevice* fresh = nullptr;
  return enterOrAppend(device, fresh);
}

// A record is made outside of the mutex, and not needed when the bus has got another meanwhile.
tParentDevice* tParentList::provide(DEVICE_OBJECT& device) {
  tParentDevice* const known = enter(device);
  if (known != nullptr || !__atomic_load_n(&isReady, __ATOMIC_ACQUIRE)) return known;
  tParentDevice* fresh = tParentDevice::create(device);
  if (fresh == nullptr) return nullptr;
  tParentDevice* const parent = enterOrAppend(device, fresh);
  if (fresh != nullptr) fresh->destroy();
  return parent;
}

// One in the list is not closed, so it can be entered. What is appended is taken out of `fresh`.
tParentDevice* tParentList::enterOrAppend(DEVICE_OBJECT const& device, tParentDevice*& fresh) {
  if (!__atomic_load_n(&isReady, __ATOMIC_ACQUIRE)) return nullptr;
  tFastMutexGuard const guard(mutex);
  tParentDevice* parent = find(device);
  if (parent == nullptr && fresh != nullptr) {
    parent = fresh;
    parents.append(*parent);
    fresh = nullptr;
  }
  if (parent != nullptr) parent->enter();
  return parent;
}

tParentDevice* tParentList::take(DEVICE_OBJECT const& device) {
  if (!__atomic_load_n(&isReady, __ATOMIC_ACQUIRE)) return nullptr;
  tFastMutexGuard const guard(mutex);
  tParentDevice* const parent = find(device);
  if (parent != nullptr) parents.remove(*parent);
  return parent;
}

}  // namespace nOXDIAG100
