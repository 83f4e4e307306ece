#include "vexk/threadUtility.h"

#include "ntos/thread.h"

namespace {

constexpr u32 kFirstIdleThread = 1;
constexpr u32 kBetweenThreads = 4;

}  // namespace

u32 tThreadUtility::getCurrentThreadId() {
  u32 const id = static_cast<u32>(reinterpret_cast<uintptr_t>(PsGetCurrentThreadId()));
  if (id != 0) return id;
  return kFirstIdleThread + kBetweenThreads * KeGetCurrentProcessorNumberEx(nullptr);
}
