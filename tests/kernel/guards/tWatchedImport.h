#pragma once

// A function of the tests that stands between the kernel and every loaded module that imports a
// kernel function, under whatever name the module goes. One at a time for a name. PASSIVE_LEVEL.

#include "ntos/types.h"

class tWatchedImport {
 public:
  // Every module that imports `name` calls `function` instead.
  tWatchedImport(char const* name, void* function);

  // They call the kernel again.
  ~tWatchedImport();

  tWatchedImport(tWatchedImport const&) = delete;
  tWatchedImport& operator=(tWatchedImport const&) = delete;

  // In how many modules it stands; the driver of the tests is not one of them.
  u32 countModules() const { return count; }

 private:
  static constexpr u32 kCapacity = 8;

  void watch(void** place, void* function);

  void** places[kCapacity] = {};
  void* former[kCapacity] = {};
  u32 count = 0;
};
