#include "tDispatcherTable.h"

#include "ntos/wait.h"
#include "vexk/statusCodes.h"
#include "vexkntos/tCriticalRegionGuard.h"
#include "vexkntos/tFastMutexGuard.h"
#include "vexkntos/tReturnWatch.h"

constinit tDispatcherTable vexDispatcherTable;

void tDispatcherTable::initialise() {
  ExInitializeFastMutex(&guard);
  isReady = true;
}

i32 tDispatcherTable::add(tDispatcher& dispatcher) {
  tFastMutexGuard const held(guard);
  size_t const length = __builtin_strlen(dispatcher.name);
  if (find(exported, dispatcher.name, length) != nullptr) return kStatusBadArgument;
  if (find(closing, dispatcher.name, length) != nullptr) return kStatusBadArgument;
  dispatcher.module = nullptr;
  dispatcher.next = exported;
  exported = &dispatcher;
  return 0;
}

void tDispatcherTable::remove(tDispatcher& dispatcher) {
  if (!isReady) return;
  tFastMutexGuard const held(guard);
  if (!take(exported, dispatcher)) take(closing, dispatcher);
  if (dispatcher.running != 0) waitUntilIdle(dispatcher);
}

// A module that goes waits for the requests that run, so their threads are not suspended.
i32 tDispatcherTable::deliver(char const* name, size_t length, u64 request) {
  tReturnWatch const watch(name, length);
  tCriticalRegionGuard const region;
  tDispatcher* const dispatcher = begin(name, length);
  if (dispatcher == nullptr) return kStatusNoDispatcher;
  dispatcher->dispatch(request);
  end(*dispatcher);
  return 0;
}

tDispatcherTable::tDispatcher* tDispatcherTable::begin(char const* name, size_t length) {
  tFastMutexGuard const held(guard);
  tDispatcher* const dispatcher = find(exported, name, length);
  if (dispatcher == nullptr || dispatcher->module == nullptr) return nullptr;
  ++dispatcher->running;
  return dispatcher;
}

// Whoever waits goes on only after the guard is released, so the dispatcher lives until then.
void tDispatcherTable::end(tDispatcher& dispatcher) {
  tFastMutexGuard const held(guard);
  if (--dispatcher.running != 0) return;
  for (tWaiter* waiter = waiters; waiter != nullptr; waiter = waiter->next) {
    if (waiter->dispatcher == &dispatcher) KeSetEvent(&waiter->idle, 0, 0);
  }
}

void tDispatcherTable::open(void const* module) {
  tFastMutexGuard const held(guard);
  for (tDispatcher* each = exported; each != nullptr; each = each->next) {
    if (each->module == nullptr) each->module = module;
  }
}

// While it waits, a dispatcher may be withdrawn and destroyed by its owner: each is looked up anew.
void tDispatcherTable::close(void const* module) {
  tFastMutexGuard const held(guard);
  moveToClosing(module);
  while (tDispatcher* const dispatcher = findOf(closing, module)) {
    if (dispatcher->running != 0) {
      waitUntilIdle(*dispatcher);
    } else {
      take(closing, *dispatcher);
    }
  }
}

void tDispatcherTable::moveToClosing(void const* module) {
  while (tDispatcher* const dispatcher = findOf(exported, module)) {
    take(exported, *dispatcher);
    dispatcher->next = closing;
    closing = dispatcher;
  }
}

// Lets go of the guard for as long as it waits. No new request begins: the dispatcher is not
// exported any more.
void tDispatcherTable::waitUntilIdle(tDispatcher const& dispatcher) {
  tWaiter waiter{&dispatcher, waiters, {}};
  KeInitializeEvent(&waiter.idle, NotificationEvent, 0);
  waiters = &waiter;
  ExReleaseFastMutex(&guard);
  KeWaitForSingleObject(&waiter.idle, Executive, KernelMode, 0, nullptr);
  ExAcquireFastMutex(&guard);
  take(waiter);
}

void tDispatcherTable::take(tWaiter const& waiter) {
  tWaiter** link = &waiters;
  while (*link != &waiter) link = &(*link)->next;
  *link = waiter.next;
}

bool tDispatcherTable::take(tDispatcher*& list, tDispatcher const& dispatcher) {
  tDispatcher** link = &list;
  while (*link != nullptr && *link != &dispatcher) link = &(*link)->next;
  if (*link == nullptr) return false;
  *link = dispatcher.next;
  return true;
}

bool tDispatcherTable::isNamed(tDispatcher const& dispatcher, char const* name, size_t length) {
  return __builtin_strlen(dispatcher.name) == length &&
         __builtin_memcmp(dispatcher.name, name, length) == 0;
}

tDispatcherTable::tDispatcher* tDispatcherTable::find(tDispatcher* list, char const* name,
                                                      size_t length) {
  while (list != nullptr && !isNamed(*list, name, length)) list = list->next;
  return list;
}

tDispatcherTable::tDispatcher* tDispatcherTable::findOf(tDispatcher* list, void const* module) {
  while (list != nullptr && list->module != module) list = list->next;
  return list;
}
