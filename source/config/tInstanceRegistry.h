#pragma once

// Which name and which handle stand for which object, behind the functions of
// "oxdiagk/instanceRegistry.h".

#include "config/instanceNames.h"
#include "config/tReleasedHandles.h"
#include "oxdiagk/instanceRegistry.h"
#include "oxdiagk/tConfigurable.h"
#include "stl/list.h"
#include "stl/map.h"
#include "vexk/sync.h"

namespace nOXDIAG100 {

// The numbers that a registry issues, and the one that it tries first.
struct tHandleRange {
  u32 first = kFirstHandle;
  u32 last = kLastHandle;
  u32 candidate = kFirstHandle;
};

// Any thread may call any function of a built registry; each holds the lock of the registry while
// it runs, for O(log n) steps with n handles out; behind the end of the range acquire also passes
// every handle that is still out in front of the next free one, O(log n) each. IRQL <= APC_LEVEL,
// above which the lock's kStatusSyncIrqlTooHigh is the only effect.
class OXDIAG_API tInstanceRegistry {
 public:
  // The one of the module.
  static tInstanceRegistry& getInstance();

  // Build and destroy it: for the tables of the module's entry, and nobody else. Before and after,
  // the construction status is kStatusNotInitialized, and no name is known.
  static void constructInstance(tNamedInstances const& instances);
  static void destroyInstance();

  explicit tInstanceRegistry(tHandleRange const& range = {}, tNamedInstances const& named = {});
  ~tInstanceRegistry();

  tInstanceRegistry(tInstanceRegistry const&) = delete;
  tInstanceRegistry& operator=(tInstanceRegistry const&) = delete;

  // 0, or why the lock or, with the lock open, the ring of released handles could not be had. While
  // it is negative the functions below have no effect but to give it as their status.
  i32 getConstructionStatus() const;

  // The object of this name, null when there is none. Takes no lock, whatever the construction
  // status. Any IRQL.
  tConfigurable* findNamed(char const* name) const;

  // Issues a handle for `instance`, which must outlive it. kNoHandle on failure, with the reason in
  // `status`, which is left alone on success:
  //   kStatusNoFreeHandle  every number of the range is in use or was released just now
  //   kStatusOutOfMemory   the handle could not be kept; the next one issued is another
  //   the lock's code      the lock could not be acquired
  u32 acquire(tConfigurable& instance, i32& status);

  // Withdraws a handle. Returns 0, or with nothing changed
  //   kStatusUnknownHandle  it is none, or was released before
  //   the lock's code       the lock could not be acquired
  i32 release(u32 handle);

  // The object that `handle` stands for; null with a status as above when there is none.
  tConfigurable* find(u32 handle, i32& status);

 private:
  using tIssuedHandles = _STL::list<u32>;

  struct tIssue {
    tConfigurable* instance;
    tIssuedHandles::iterator place;  // of the handle among those issued
  };

  bool isPassedOver(u32 handle) const;
  u32 chooseHandle();  // kNoHandle when there is none
  bool record(u32 handle, tConfigurable& instance);

  _STL::map<u32, tIssue> table;
  tIssuedHandles issued;  // in the order of issue
  tReleasedHandles released;
  tNamedInstances named;
  tHandleRange range;  // candidate: where the next search begins
  bool isReuseGuarded = false;
  i32 constructionStatus = 0;
  iSync* lock;  // owned
};

}  // namespace nOXDIAG100
