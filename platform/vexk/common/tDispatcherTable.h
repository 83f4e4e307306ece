#pragma once

// Every exported dispatcher, and the way of a request to it.

#include "ntos/fastMutex.h"
#include "vexk/iLib.h"

// Guarded by a fast mutex, which nobody holds while a request runs or somebody waits for one: IRQL
// <= APC_LEVEL, PASSIVE_LEVEL where it says so. Nothing is allocated.
class tDispatcherTable {
 public:
  constexpr tDispatcherTable() = default;

  // Makes the guard ready. Dispatchers that are exported stay so.
  void initialise();

  // As iLib, of a layer that runs and of a name that is good.
  i32 add(iLib::iDispatcher& dispatcher);
  i32 deliver(char const* name, size_t length, u64 request);  // PASSIVE_LEVEL

  // Takes a dispatcher out and waits until nothing runs in it; good before initialise too.
  // PASSIVE_LEVEL.
  void remove(iLib::iDispatcher& dispatcher);

  // Opens every dispatcher that is nobody's yet to requests, as the module's.
  void open(void const* module);

  // Takes the module's dispatchers out and waits until nothing runs in them. PASSIVE_LEVEL.
  void close(void const* module);

 private:
  using tDispatcher = iLib::iDispatcher;

  // A thread that waits, in a frame of its own, until nothing runs in a dispatcher.
  struct tWaiter {
    tDispatcher const* dispatcher;
    tWaiter* next;
    KEVENT idle;
  };

  static bool isNamed(tDispatcher const& dispatcher, char const* name, size_t length);
  static tDispatcher* find(tDispatcher* list, char const* name, size_t length);
  static bool take(tDispatcher*& list, tDispatcher const& dispatcher);
  static tDispatcher* findOf(tDispatcher* list, void const* module);

  tDispatcher* begin(char const* name, size_t length);
  void end(tDispatcher& dispatcher);
  void moveToClosing(void const* module);
  void waitUntilIdle(tDispatcher const& dispatcher);
  void take(tWaiter const& waiter);

  bool isReady = false;
  FAST_MUTEX guard{};
  tDispatcher* exported = nullptr;
  tDispatcher* closing = nullptr;  // of modules that are being unregistered
  tWaiter* waiters = nullptr;
};

extern tDispatcherTable vexDispatcherTable;
