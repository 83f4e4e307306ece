#include "package/windows/tTerminatorList.h"

#include "vexk/memory.h"
#include "vexk/placementNew.h"

namespace nOXDIAG100 {

i32 tTerminatorList::push(tFunction function) {
  i32 status = 0;
  void* memory = _memNewUsingCRT(sizeof(tNode), kMemLongLived, status);
  if (memory == nullptr) return 1;
  head = new (memory) tNode{head, function};
  return 0;
}

void tTerminatorList::runAll() {
  while (head != nullptr) {
    tNode* node = head;
    head = node->next;
    node->function();
    _memDelete(node);
  }
}

}  // namespace nOXDIAG100
