// Included in front of the sources of the library that the models of schedules are built with: each
// atomic operation is a point of the schedule, and so is each turn of a loop that only waits.

#include "ntoshost/schedule.h"

// NOLINTBEGIN(bugprone-reserved-identifier): the operations have these names.
#define __atomic_load_n(...) (::ntoshost::schedulePoint(), __atomic_load_n(__VA_ARGS__))
#define __atomic_store_n(...) (::ntoshost::schedulePoint(), __atomic_store_n(__VA_ARGS__))
#define __atomic_exchange_n(...) (::ntoshost::schedulePoint(), __atomic_exchange_n(__VA_ARGS__))
#define __atomic_compare_exchange_n(...) \
  (::ntoshost::schedulePoint(), __atomic_compare_exchange_n(__VA_ARGS__))
#define __atomic_fetch_add(...) (::ntoshost::schedulePoint(), __atomic_fetch_add(__VA_ARGS__))
#define __atomic_fetch_sub(...) (::ntoshost::schedulePoint(), __atomic_fetch_sub(__VA_ARGS__))
#define __atomic_add_fetch(...) (::ntoshost::schedulePoint(), __atomic_add_fetch(__VA_ARGS__))
#define __atomic_sub_fetch(...) (::ntoshost::schedulePoint(), __atomic_sub_fetch(__VA_ARGS__))
#define __builtin_ia32_pause() ::ntoshost::scheduleYield()
// NOLINTEND(bugprone-reserved-identifier)
