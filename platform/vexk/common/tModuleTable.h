#pragma once

// Every registered module.

#include "ntos/fastMutex.h"
#include "vexk/moduleInfo.h"

// Guarded by a fast mutex, which nobody holds while a module's entry runs: IRQL <= APC_LEVEL.
class tModuleTable {
 public:
  constexpr tModuleTable() = default;

  // Makes the guard ready. Modules that are registered stay so.
  void initialise();

  // Returns 0, kStatusBadArgument when the module is there already, or kStatusOutOfMemory.
  i32 add(_tLibModuleInfo const& module);

  // Returns whether the module was there; good before initialise too.
  bool remove(_tLibModuleInfo const& module);

  u32 count();

 private:
  struct tNode;

  tNode** find(_tLibModuleInfo const& module);
  tNode* take(_tLibModuleInfo const& module);

  bool isReady = false;
  FAST_MUTEX guard{};
  tNode* first = nullptr;
};

extern tModuleTable vexModuleTable;
