#include "schedule/turn.h"

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace ntoshost {

void giveTurn(u32& turn) {
  __atomic_store_n(&turn, 1, __ATOMIC_SEQ_CST);
  syscall(SYS_futex, &turn, FUTEX_WAKE_PRIVATE, 1);
}

void awaitTurn(u32& turn) {
  while (__atomic_exchange_n(&turn, 0, __ATOMIC_SEQ_CST) == 0) {
    syscall(SYS_futex, &turn, FUTEX_WAIT_PRIVATE, 0, nullptr);
  }
}

}  // namespace ntoshost
