#pragma once

// What has to be undone at unload: a singly linked list of functions, the last pushed called first.
// Not locked; load and unload run in one thread at PASSIVE_LEVEL.

#include "ntos/types.h"

namespace nOXDIAG100 {

class tTerminatorList {
 public:
  using tFunction = void (*)();

  constexpr tTerminatorList() = default;

  // Adds a function at the head. Returns 0, or 1 when no node could be allocated; the list is then
  // as it was, and what the function would have undone is the caller's to undo.
  i32 push(tFunction function);

  // Pops every node, calls its function and frees the node.
  void runAll();

 private:
  struct tNode {
    tNode* next;
    tFunction function;
  };

  tNode* head = nullptr;
};

}  // namespace nOXDIAG100
