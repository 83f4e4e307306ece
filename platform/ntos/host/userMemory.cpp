#include "ntoshost/userMemory.h"

#include <errno.h>
#include <poll.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

#include "irqlCheck.h"
#include "ntoshost/faults.h"

namespace ntoshost {
namespace {

constexpr size_t kPageSize = 4096;
constexpr size_t kPagesAtOnce = 16;

using Transfer = decltype(&process_vm_readv);

constexpr int kNone = -1;

constinit thread_local i32 g_process = 0;
constinit thread_local int g_descriptor = kNone;  // what holds on to that process

void* pointerTo(u64 address) {
  return reinterpret_cast<void*>(address);
}

size_t untilNextPage(u64 address) {
  return kPageSize - address % kPageSize;
}

// The part of a user range that is copied at once, page by page: the system copies a piece whole or
// not at all, and memory can end only where a page does.
struct UserPages {
  UserPages(u64 address, size_t wanted) {
    while (count < kPagesAtOnce && length < wanted) {
      size_t piece = untilNextPage(address + length);
      if (piece > wanted - length) piece = wanted - length;
      pieces[count++] = {pointerTo(address + length), piece};
      length += piece;
    }
  }

  iovec pieces[kPagesAtOnce];
  size_t count = 0;
  size_t length = 0;
};

// A process that has ended is gone, also while its number is still kept for its parent.
bool isGone() {
  pollfd watched = {g_descriptor, POLLIN, 0};
  return g_descriptor != kNone && poll(&watched, 1, 0) != 0;
}

size_t copy(Transfer transfer, i32 process, u8 const* local, u64 userAddress, size_t length) {
  size_t copied = 0;
  while (copied < length) {
    UserPages const pages(userAddress + copied, length - copied);
    iovec const part = {const_cast<u8*>(local + copied), pages.length};
    ssize_t const moved = transfer(process, &part, 1, pages.pieces, pages.count, 0);
    if (moved <= 0) break;
    copied += static_cast<size_t>(moved);
  }
  return copied;
}

// Looking again behind the copy tells that what was read is of no later process with that number.
size_t copyUnlessGone(Transfer transfer, u8 const* local, u64 userAddress, size_t length) {
  if (injectFault(kFaultUserCopy) || isGone()) return 0;
  size_t const copied = copy(transfer, getUserProcess(), local, userAddress, length);
  return isGone() ? 0 : copied;
}

// Nothing is at address 0, but only who may look is told so.
bool mayTouch(i32 process) {
  u8 byte = 0;
  iovec const local = {&byte, 1};
  iovec const remote = {nullptr, 1};
  return process_vm_readv(process, &local, 1, &remote, 1, 0) == 1 || errno == EFAULT;
}

}  // namespace

bool setUserProcess(i32 pid) {
  int const descriptor = pid == 0 ? kNone : static_cast<int>(syscall(SYS_pidfd_open, pid, 0));
  bool const isReached = pid == 0 || (descriptor != kNone && mayTouch(pid));
  int const unneeded = isReached ? g_descriptor : descriptor;
  if (isReached) {
    g_process = pid;
    g_descriptor = descriptor;
  }
  if (unneeded != kNone) close(unneeded);
  return isReached;
}

i32 getUserProcess() {
  return g_process != 0 ? g_process : getpid();
}

size_t copyFromUser(void* to, u64 userAddress, size_t length) {
  requireIrqlAtMost(APC_LEVEL, "copyFromUser");
  return copyUnlessGone(process_vm_readv, static_cast<u8*>(to), userAddress, length);
}

size_t copyToUser(u64 userAddress, void const* from, size_t length) {
  requireIrqlAtMost(APC_LEVEL, "copyToUser");
  return copyUnlessGone(process_vm_writev, static_cast<u8 const*>(from), userAddress, length);
}

}  // namespace ntoshost
