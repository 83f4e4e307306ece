#include "stack/kernelStack.h"

#include <pthread.h>
#include <signal.h>
#include <sys/mman.h>

#include "faultHandler.h"
#include "io/currentDriver.h"
#include "ntoshost/stack.h"
#include "ntoshost/violation.h"
#include "stack/sanitized.h"

// A stack is one mapping: the stack on which signals are handled, the guard, the stack, a guard. It
// is never given back to the system: when its thread ends another one has it. So the marks of all
// that ever ran are found when somebody asks how deep it was, and a request costs no look at them.

namespace ntoshost {
namespace {

constexpr u64 kPageSize = 4096;
constexpr u64 kSignalStackSize = u64{32} * 1024;
constexpr u64 kGuardBelow = u64{64} * 1024;
constexpr u64 kWholeSize = kSignalStackSize + kGuardBelow + kKernelStackSize + kPageSize;
constexpr u64 kUntouched = 0x6B6B'6B6B'6B6B'6B6B;

struct KernelStack {
  KernelStack* nextOfAll;
  KernelStack* nextFree;
  bool isInUse;  // by a driver
  u8* mapping;

  u8* guard() const { return mapping + kSignalStackSize; }
  u8* low() const { return guard() + kGuardBelow; }
  u8* high() const { return low() + kKernelStackSize; }
};

constinit pthread_mutex_t g_lock = PTHREAD_MUTEX_INITIALIZER;
constinit KernelStack* g_all = nullptr;
constinit KernelStack* g_free = nullptr;
constinit pthread_once_t g_once = PTHREAD_ONCE_INIT;
constinit pthread_key_t g_key = 0;
constinit thread_local KernelStack* g_stack = nullptr;  // the calling thread's

class StacksLock {
 public:
  StacksLock() { pthread_mutex_lock(&g_lock); }
  ~StacksLock() { pthread_mutex_unlock(&g_lock); }
  StacksLock(StacksLock const&) = delete;
  StacksLock& operator=(StacksLock const&) = delete;
};

bool isInUse(KernelStack const& stack) {
  return __atomic_load_n(&stack.isInUse, __ATOMIC_RELAXED);
}

void setInUse(KernelStack& stack, bool isUsed) {
  __atomic_store_n(&stack.isInUse, isUsed, __ATOMIC_RELAXED);
}

bool isOnStack() {
  return g_stack != nullptr && isInUse(*g_stack);
}

void mark(KernelStack& stack) {
  u64* const words = reinterpret_cast<u64*>(stack.low());
  for (u64 i = 0; i < kKernelStackSize / sizeof(u64); ++i) words[i] = kUntouched;
}

u64 depthOf(KernelStack const& stack) {
  u64 const volatile* const words = reinterpret_cast<u64*>(stack.low());
  u64 untouched = 0;
  while (untouched < kKernelStackSize && words[untouched / sizeof(u64)] == kUntouched) {
    untouched += sizeof(u64);
  }
  return kKernelStackSize - untouched;
}

u8* mapStack() {
  void* const mapping =
      mmap(nullptr, kWholeSize, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (mapping == MAP_FAILED) return nullptr;
  u8* const bytes = static_cast<u8*>(mapping);
  if (mprotect(bytes, kSignalStackSize, PROT_READ | PROT_WRITE) == 0 &&
      mprotect(bytes + kSignalStackSize + kGuardBelow, kKernelStackSize, PROT_READ | PROT_WRITE) ==
          0) {
    return bytes;
  }
  munmap(mapping, kWholeSize);
  return nullptr;
}

// The record lies at the bottom of the signal stack, which is far from being that deep.
KernelStack* makeStack() {
  u8* const mapping = mapStack();
  if (mapping == nullptr) violation("The machine has no memory for a kernel stack.");
  KernelStack* const stack = reinterpret_cast<KernelStack*>(mapping);
  stack->mapping = mapping;
  mark(*stack);
  stack->nextOfAll = g_all;
  g_all = stack;
  return stack;
}

KernelStack* takeStack() {
  StacksLock const lock;
  if (g_free == nullptr) return makeStack();
  KernelStack* const stack = g_free;
  g_free = stack->nextFree;
  return stack;
}

stack_t signalStackIn(KernelStack const& stack) {
  stack_t signals = {};
  signals.ss_sp = stack.mapping + sizeof(KernelStack);
  signals.ss_size = kSignalStackSize - sizeof(KernelStack);
  return signals;
}

// A thread that has a stack for signals already keeps it.
void useSignalStack(KernelStack const& stack) {
  stack_t current = {};
  if (sigaltstack(nullptr, &current) != 0 || (current.ss_flags & SS_DISABLE) == 0) return;
  stack_t const own = signalStackIn(stack);
  sigaltstack(&own, nullptr);
}

void leaveSignalStack(KernelStack const& stack) {
  stack_t current = {};
  if (sigaltstack(nullptr, &current) != 0 || current.ss_sp != signalStackIn(stack).ss_sp) return;
  stack_t none = {};
  none.ss_flags = SS_DISABLE;
  sigaltstack(&none, nullptr);
}

// At the end of the thread.
void giveBack(void* thread) {
  KernelStack* const stack = static_cast<KernelStack*>(thread);
  if (isInUse(*stack)) violation("A thread ended within %s.", CurrentDriverText().text);
  leaveSignalStack(*stack);
  g_stack = nullptr;
  StacksLock const lock;
  stack->nextFree = g_free;
  g_free = stack;
}

void prepare() {
  pthread_key_create(&g_key, giveBack);
  installFaultHandler();
}

KernelStack& stackOfThread() {
  if (g_stack != nullptr) return *g_stack;
  pthread_once(&g_once, prepare);
  g_stack = takeStack();
  pthread_setspecific(g_key, g_stack);
  useSignalStack(*g_stack);
  return *g_stack;
}

// Calls function(context) with the stack pointer at `top`. The frame pointer leads back, for those
// who walk the frames.
__attribute__((naked, noinline)) void callAt(void (*)(void*), void*, void*) {
  asm("push %rbp\n"
      ".cfi_def_cfa_offset 16\n"
      ".cfi_offset %rbp, -16\n"
      "mov %rsp, %rbp\n"
      ".cfi_def_cfa_register %rbp\n"
      "mov %rdx, %rsp\n"
      "mov %rdi, %rax\n"
      "mov %rsi, %rdi\n"
      "call *%rax\n"
      "mov %rbp, %rsp\n"
      "pop %rbp\n"
      ".cfi_def_cfa %rsp, 8\n"
      "ret");
}

}  // namespace

void runOnKernelStack(void (*function)(void* context), void* context) {
  if (isSanitized() || isOnStack()) return function(context);
  KernelStack& stack = stackOfThread();
  setInUse(stack, true);
  callAt(function, context, stack.high());
  setInUse(stack, false);
}

StackBounds kernelStackAround(u64 address) {
  if (g_stack == nullptr) return {};
  StackBounds const bounds = {reinterpret_cast<u64>(g_stack->low()),
                              reinterpret_cast<u64>(g_stack->high())};
  return bounds.contains(address) ? bounds : StackBounds{};
}

void requireNoStackOverflow(u64 address) {
  if (!isOnStack()) return;
  u64 const guard = reinterpret_cast<u64>(g_stack->guard());
  if (address - guard >= kGuardBelow) return;
  violation("The kernel stack of %llu bytes has overflown within %s.", kKernelStackSize,
            CurrentDriverText().text);
}

bool hasKernelStacks() {
  return !isSanitized();
}

u64 deepestKernelStack() {
  StacksLock const lock;
  u64 deepest = 0;
  for (KernelStack const* each = g_all; each != nullptr; each = each->nextOfAll) {
    u64 const depth = depthOf(*each);
    if (depth > deepest) deepest = depth;
  }
  return deepest;
}

void forgetStackDepth() {
  StacksLock const lock;
  for (KernelStack* each = g_all; each != nullptr; each = each->nextOfAll) {
    if (isInUse(*each)) violation("forgetStackDepth was called while a driver runs.");
    mark(*each);
  }
}

}  // namespace ntoshost
