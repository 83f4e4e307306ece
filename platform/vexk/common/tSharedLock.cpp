#include "tSharedLock.h"

#include "ntos/status.h"

namespace {

// Of the priority of the thread that is woken, as the kernel's mutex does.
constexpr i32 kBoost = 1;

// Between two looks of a thread whose time has passed and for whom the event is about to be set.
constexpr u32 kLastWait = 1;  // milliseconds

constexpr i64 kKernelTimePerMillisecond = 10000;  // units of 100 ns

NTSTATUS waitFor(KEVENT& event, u32 timeoutMilliseconds) {
  LARGE_INTEGER span;
  span.QuadPart = -kKernelTimePerMillisecond * timeoutMilliseconds;
  bool const forever = timeoutMilliseconds == kSyncWaitForever;
  return KeWaitForSingleObject(&event, Executive, KernelMode, 0, forever ? nullptr : &span);
}

bool isSameText(char const* left, char const* right) {
  while (*left != '\0' && *left == *right) {
    ++left;
    ++right;
  }
  return *left == *right;
}

void copyText(char* to, char const* from) {
  while ((*to++ = *from++) != '\0') {
  }
}

}  // namespace

tSharedLock::tSharedLock(char const* lockName, tSyncDescriptor const& descriptor)
    : kind(descriptor.kind), token{descriptor.token[0], descriptor.token[1]} {
  KeInitializeEvent(&event, SynchronizationEvent, 0);
  copyText(name, lockName == nullptr ? "" : lockName);
}

i32 tSharedLock::acquireAgain() {
  if (depth == kSyncMaximumDepth) return kStatusSyncTooDeep;
  ++depth;
  return 0;
}

i32 tSharedLock::await(u32 timeoutMilliseconds) {
  if (timeoutMilliseconds == 0) return kStatusSyncTimeout;
  if (__atomic_fetch_add(&contenders, 1, __ATOMIC_ACQUIRE) == 0) return 0;
  NTSTATUS const result = waitFor(event, timeoutMilliseconds);
  if (result == STATUS_SUCCESS) return 0;
  do {
    if (withdraw()) return result == STATUS_TIMEOUT ? kStatusSyncTimeout : kStatusSyncFailed;
  } while (waitFor(event, kLastWait) != STATUS_SUCCESS);
  return 0;
}

// Takes the calling thread out of the count. False when the lock is for nobody else.
bool tSharedLock::withdraw() {
  u32 seen = __atomic_load_n(&contenders, __ATOMIC_RELAXED);
  while (seen > 1) {
    if (__atomic_compare_exchange_n(&contenders, &seen, seen - 1, true, __ATOMIC_RELAXED,
                                    __ATOMIC_RELAXED)) {
      return true;
    }
  }
  return false;
}

void tSharedLock::wakeOne() {
  KeSetEvent(&event, kBoost, 0);
}

void tSharedLock::copyName(char (&to)[kSyncMaximumNameLength + 1]) const {
  copyText(to, name);
}

bool tSharedLock::isNamed(char const* wantedName, tSyncDescriptor const& descriptor) const {
  if (wantedName == nullptr || kind != descriptor.kind) return false;
  if (kind == kSyncKindTokenMutex &&
      (token[0] != descriptor.token[0] || token[1] != descriptor.token[1])) {
    return false;
  }
  return isSameText(name, wantedName);
}
