#pragma once

// The kernel DLLs of the family, initialised and unloaded as the kernel does it.

#include "ntos/types.h"

class tBootedModules {
 public:
  constexpr tBootedModules() = default;

  // Calls DllInitialize of vexk, qelmk and oxdiagk in this order, each with a service key path of
  // its own. Returns the first failure; the modules before it are unloaded again.
  NTSTATUS initialise();

  // Calls DllUnload of those that were initialised, in reverse. Returns the last failure.
  NTSTATUS unload();

 private:
  static constexpr u32 kCount = 3;

  u32 initialised = 0;
};
