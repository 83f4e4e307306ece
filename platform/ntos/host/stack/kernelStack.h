#pragma once

#include "stack/stackBounds.h"

namespace ntoshost {

// Calls function(context) on a stack as big as a kernel thread's, with a guard below it, see
// ntoshost/stack.h. On the stack that it has where the thread is on such a one already, under the
// sanitizers and in the plain executive.
void runOnKernelStack(void (*function)(void* context), void* context);

// The same for anything that is called without arguments.
template <class Work>
void onKernelStack(Work& work) {
  runOnKernelStack([](void* context) { (*static_cast<Work*>(context))(); }, &work);
}

// The calling thread's kernel stack when the address is on it; empty otherwise.
StackBounds kernelStackAround(u64 address);

}  // namespace ntoshost
