// What the compiler expects of a language runtime; linked into every kernel module.

#include "compiler/types.h"
#include "vexk/debug.h"
#include "vexk/memory.h"

// A pure virtual operation was called: an object is used before or after its life.
extern "C" int _purecall() {
  ssprintf("a pure virtual operation was called\n");
  ssHalt();
  return 0;
}

// For what has no operators of its own. An ordinary new expression does not look for null, so a
// class of the family says VEX_MODULE_MEMORY instead.
void* operator new(size_t size) {
  i32 status = 0;
  return _memNewUsingCRT(size, kMemLongLived, status);
}

void* operator new[](size_t size) {
  i32 status = 0;
  return _memNewUsingCRT(size, kMemLongLived, status);
}

void operator delete(void* block) noexcept {
  _memDelete(block);
}
void operator delete[](void* block) noexcept {
  _memDelete(block);
}
void operator delete(void* block, size_t) noexcept {
  _memDelete(block);
}
void operator delete[](void* block, size_t) noexcept {
  _memDelete(block);
}
