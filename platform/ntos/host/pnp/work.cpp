#include <pthread.h>
#include <stdlib.h>

#include "irqlCheck.h"
#include "ntoshost/violation.h"
#include "ownLock.h"
#include "pnp/lifecycle.h"

// Relations that were invalidated, and the thread that asks for them again. The thread lives as
// long as there is something to do.

namespace ntoshost {
namespace {

struct Item {
  Item* next;
  DEVICE_OBJECT* device;  // with a reference
};

constinit pthread_mutex_t g_lock = PTHREAD_MUTEX_INITIALIZER;
constinit pthread_cond_t g_isIdle = PTHREAD_COND_INITIALIZER;
constinit Item* g_items = nullptr;
constinit bool g_isWorking = false;
constinit PnpMode g_mode = PnpMode::Worker;

class WorkLock {
 public:
  WorkLock() { lockOwn(g_lock); }
  ~WorkLock() { unlockOwn(g_lock); }
  WorkLock(WorkLock const&) = delete;
  WorkLock& operator=(WorkLock const&) = delete;
};

void requireKnown(DEVICE_OBJECT* device) {
  TreeView const view;
  if (findNode(device) != nullptr) return;
  violation("IoInvalidateDeviceRelations was given %p, which is no physical device of the tree.",
            static_cast<void*>(device));
}

// Behind the others, unless it is among them.
void add(DEVICE_OBJECT* device) {
  Item** link = &g_items;
  for (; *link != nullptr; link = &(*link)->next) {
    if ((*link)->device == device) return;
  }
  Item* const item = static_cast<Item*>(calloc(1, sizeof(Item)));
  if (item == nullptr) violation("The machine has no memory for the PnP manager's work.");
  ObfReferenceObject(device);
  item->device = device;
  *link = item;
}

// The device that waits longest, with its reference; null when there is none.
DEVICE_OBJECT* take() {
  WorkLock const lock;
  Item* const item = g_items;
  if (item == nullptr) return nullptr;
  DEVICE_OBJECT* const device = item->device;
  g_items = item->next;
  free(item);
  return device;
}

// False when there is nothing to do.
bool workOnOne() {
  DEVICE_OBJECT* const device = take();
  if (device == nullptr) return false;
  {
    TreeOperation const operation("The PnP manager's enumeration");
    Node* const node = findNode(device);
    if (node != nullptr && node->known.state == DeviceState::Started) enumerate(*node);
  }
  ObfDereferenceObject(device);
  return true;
}

bool isDone() {
  WorkLock const lock;
  if (g_items != nullptr) return false;
  g_isWorking = false;
  pthread_cond_broadcast(&g_isIdle);
  return true;
}

void* work(void*) {
  while (workOnOne() || !isDone()) {
  }
  return nullptr;
}

// The caller has the lock.
void startWorking() {
  if (g_isWorking || g_items == nullptr || g_mode != PnpMode::Worker) return;
  pthread_t thread;
  if (pthread_create(&thread, nullptr, work, nullptr) != 0) {
    violation("The machine has no thread for the PnP manager's work.");
  }
  pthread_detach(thread);
  g_isWorking = true;
}

}  // namespace

void setPnpMode(PnpMode mode) {
  WorkLock const lock;
  g_mode = mode;
  startWorking();
}

u64 runPnpWork() {
  u64 count = 0;
  while (workOnOne()) ++count;
  return count;
}

void waitForPnp() {
  WorkLock const lock;
  while (g_isWorking) pthread_cond_wait(&g_isIdle, &g_lock);
}

}  // namespace ntoshost

void IoInvalidateDeviceRelations(DEVICE_OBJECT* device, DEVICE_RELATION_TYPE type) {
  ntoshost::requireIrqlAtMost(DISPATCH_LEVEL, "IoInvalidateDeviceRelations");
  ntoshost::requireKnown(device);
  if (type != BusRelations && type != SingleBusRelations) return;
  ntoshost::WorkLock const lock;
  ntoshost::add(device);
  ntoshost::startWorking();
}
