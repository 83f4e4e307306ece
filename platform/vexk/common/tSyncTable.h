#pragma once

// Every open handle, and through them every lock.

#include "tSyncHandle.h"

// Guarded by a fast mutex: IRQL <= APC_LEVEL.
class tSyncTable {
 public:
  constexpr tSyncTable() = default;

  // Makes the guard ready. Handles that are open stay open.
  void initialise();

  // As syncOpen and syncClose, of a layer that runs and of a pointer that is not null.
  iSync* open(char const* name, tSyncDescriptor const& descriptor, i32& status);
  i32 close(iSync*& sync);

  u32 countHandles();

  // Whether the calling thread owns one of the locks, and the name of the first one found: empty
  // for a private lock.
  bool findOwned(char (&name)[kSyncMaximumNameLength + 1]);

 private:
  tSyncHandle* openGuarded(char const* name, tSyncDescriptor const& descriptor);
  tSharedLock* find(char const* name, tSyncDescriptor const& descriptor) const;
  i32 closeGuarded(iSync*& sync);

  FAST_MUTEX guard{};
  tSyncHandle* first = nullptr;
};

extern tSyncTable vexSyncTable;
