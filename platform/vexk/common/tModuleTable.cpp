#include "tModuleTable.h"

#include "vexk/memory.h"
#include "vexk/statusCodes.h"
#include "vexkntos/tFastMutexGuard.h"

constinit tModuleTable vexModuleTable;

struct tModuleTable::tNode {
  VEX_MODULE_MEMORY

  tNode(_tLibModuleInfo const& info, tNode* following) : module(info), next(following) {}

  _tLibModuleInfo const& module;
  tNode* next;
};

void tModuleTable::initialise() {
  ExInitializeFastMutex(&guard);
  isReady = true;
}

i32 tModuleTable::add(_tLibModuleInfo const& module) {
  tFastMutexGuard const held(guard);
  if (*find(module) != nullptr) return kStatusBadArgument;
  auto* node = new tNode(module, first);
  if (node == nullptr) return kStatusOutOfMemory;
  first = node;
  return 0;
}

bool tModuleTable::remove(_tLibModuleInfo const& module) {
  if (!isReady) return false;
  tNode* const node = take(module);
  delete node;
  return node != nullptr;
}

tModuleTable::tNode* tModuleTable::take(_tLibModuleInfo const& module) {
  tFastMutexGuard const held(guard);
  tNode** const link = find(module);
  tNode* const node = *link;
  if (node != nullptr) *link = node->next;
  return node;
}

tModuleTable::tNode** tModuleTable::find(_tLibModuleInfo const& module) {
  tNode** link = &first;
  while (*link != nullptr && &(*link)->module != &module) link = &(*link)->next;
  return link;
}

u32 tModuleTable::count() {
  tFastMutexGuard const held(guard);
  u32 count = 0;
  for (tNode* node = first; node != nullptr; node = node->next) ++count;
  return count;
}
