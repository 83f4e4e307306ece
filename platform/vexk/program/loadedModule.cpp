#include "vexk/loadedModule.h"

// A program reads what drivers saved, and saves no call stack of its own.
u32 _vexFindModule(u64, tLoadedModule* module) {
  *module = tLoadedModule();
  return 0;
}
