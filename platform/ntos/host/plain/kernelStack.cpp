#include "stack/kernelStack.h"

#include "faultHandler.h"
#include "ntoshost/stack.h"

namespace ntoshost {

void runOnKernelStack(void (*function)(void* context), void* context) {
  function(context);
}

StackBounds kernelStackAround(u64) {
  return {};
}

void requireNoStackOverflow(u64) {
}

bool hasKernelStacks() {
  return false;
}

u64 deepestKernelStack() {
  return 0;
}

void forgetStackDepth() {
}

}  // namespace ntoshost
