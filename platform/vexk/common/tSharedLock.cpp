#include "tSharedLock.h"

#include "ntos/irql.h"
#include "ntos/status.h"
#include "vexk/statusCodes.h"
#include "vexk/threadUtility.h"

namespace {

constexpr i64 kKernelTimePerMillisecond = 10000;  // units of 100 ns

i32 waitFor(KMUTEX& mutex, u32 timeoutMilliseconds) {
  LARGE_INTEGER span;
  span.QuadPart = -kKernelTimePerMillisecond * timeoutMilliseconds;
  bool const forever = timeoutMilliseconds == kSyncWaitForever;
  NTSTATUS const result =
      KeWaitForSingleObject(&mutex, Executive, KernelMode, 0, forever ? nullptr : &span);
  if (result == STATUS_TIMEOUT) return kStatusSyncTimeout;
  return NT_SUCCESS(result) ? 0 : kStatusSyncFailed;
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
  KeInitializeMutex(&mutex, 0);
  copyText(name, lockName == nullptr ? "" : lockName);
}

i32 tSharedLock::acquire(u32 timeoutMilliseconds) {
  if (KeGetCurrentIrql() > APC_LEVEL) return kStatusSyncIrqlTooHigh;
  if (isOwnedByCaller()) {
    if (depth == kSyncMaximumDepth) return kStatusSyncTooDeep;
    ++depth;
    return 0;
  }
  i32 const status = waitFor(mutex, timeoutMilliseconds);
  if (status < 0) return status;
  setOwner(tThreadUtility::getCurrentThreadId());
  depth = 1;
  return 0;
}

i32 tSharedLock::release() {
  if (!isOwnedByCaller()) return kStatusSyncNotOwner;
  if (--depth == 0) {
    setOwner(kNobody);
    KeReleaseMutex(&mutex, 0);
  }
  return 0;
}

bool tSharedLock::isOwnedByCaller() const {
  return getOwner() == tThreadUtility::getCurrentThreadId();
}

bool tSharedLock::isNamed(char const* wantedName, tSyncDescriptor const& descriptor) const {
  if (wantedName == nullptr || kind != descriptor.kind) return false;
  if (kind == kSyncKindTokenMutex &&
      (token[0] != descriptor.token[0] || token[1] != descriptor.token[1])) {
    return false;
  }
  return isSameText(name, wantedName);
}
