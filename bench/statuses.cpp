// What an error costs: setting a status with its origin and stack trace, copying it and dropping
// both, and the memory beneath. The lock under our pool is the platform's; its cost alone is shown
// too.

#include <benchmark/benchmark.h>

#define OXDIAG_COMPONENT "slotbus"

#include "oxdiagk/statusMacros.h"
#include "oxdiagk/tStatus2Heap.h"
#include "tFloorPool.h"
#include "vexk/sync.h"

using nOXDIAG100::tStatus2;
using nOXDIAG100::tStatus2Heap;

namespace {

constexpr i32 kCode = -61007;
constexpr u32 kFrames = tStatus2::kStackTraceLength;
constexpr u32 kDepth = 12;  // calls below the measured one, so that a full trace is found

// What a status keeps, filled in by hand.
struct tFloorRecord {
  u32 references;
  char component[24];
  char file[101];
  u32 line;
  u64 stack[kFrames];
  void const* description;
  i32 code;
};
static_assert(sizeof(tFloorRecord) <= tFloorPool::kBlockSize);

[[gnu::noinline]] void walkStack(u64* addresses) {
  void** frame = static_cast<void**>(__builtin_frame_address(0));
  for (u32 index = 0; index < kFrames; ++index) {
    addresses[index] = reinterpret_cast<u64>(frame[1]);
    frame = static_cast<void**>(frame[0]);
  }
}

[[gnu::noinline]] tFloorRecord* setFloor(tFloorPool& pool, tFloorRecord const& prepared) {
  tFloorRecord* const record = static_cast<tFloorRecord*>(pool.take());
  __builtin_memcpy(record, &prepared, sizeof(*record));
  walkStack(record->stack);
  return record;
}

// Runs `measured` with at least kDepth frames above main.
template <class tMeasured>
[[gnu::noinline]] void runDeep(tMeasured& measured, u32 depth) {
  if (depth == 0) {
    measured();
  } else {
    runDeep(measured, depth - 1);
    benchmark::ClobberMemory();  // keeps the frame: no call in the last place
  }
}

void runOurStatus(benchmark::State& state) {
  auto measured = [&state] {
    bool hasStack = true;
    for ([[maybe_unused]] auto run : state) {
      tStatus2 status;
      OXDIAG_SET_STATUS(status, kCode);
      tStatus2 copy(status);
      benchmark::DoNotOptimize(copy);
    }
    tStatus2 last;
    OXDIAG_SET_STATUS(last, kCode);
    u64 stack[kFrames] = {};
    last.getStackTrace(stack);
    for (u64 address : stack) hasStack = hasStack && address != 0;
    if (!last.hasDetail() || !hasStack) state.SkipWithError("no full detail was made");
  };
  runDeep(measured, kDepth);
}

void runFloorStatus(benchmark::State& state) {
  tFloorPool pool;
  tFloorRecord const prepared = {1, "slotbus", __FILE__, __LINE__, {}, nullptr, kCode};
  auto measured = [&] {
    for ([[maybe_unused]] auto run : state) {
      tFloorRecord* record = setFloor(pool, prepared);
      ++record->references;
      benchmark::DoNotOptimize(record);
      benchmark::ClobberMemory();
      if (--record->references != 1) state.SkipWithError("a copy was lost");
      pool.give(record);
    }
  };
  runDeep(measured, kDepth);
}

void runOurHeap(benchmark::State& state) {
  i32 status = 0;
  tStatus2Heap* const heap = tStatus2Heap::getHeap(status);
  for ([[maybe_unused]] auto run : state) {
    void* block = heap->allocateMemoryBlock(tFloorPool::kBlockSize, status);
    benchmark::DoNotOptimize(block);
    heap->releaseMemoryBlock(block, status);
  }
  if (status < 0) state.SkipWithError("the heap failed");
}

void runFloorHeap(benchmark::State& state) {
  tFloorPool pool;
  for ([[maybe_unused]] auto run : state) {
    void* block = pool.take();
    benchmark::DoNotOptimize(block);
    pool.give(block);
  }
}

void runOurLock(benchmark::State& state) {
  i32 status = 0;
  iSync* lock = syncOpen(nullptr, tSyncDescriptor{}, status);
  if (lock == nullptr) {
    state.SkipWithError("no lock");
    return;
  }
  for ([[maybe_unused]] auto run : state) {
    static_cast<void>(lock->acquire(kSyncWaitForever));
    lock->release();
  }
  syncClose(lock);
}

void runFloorLock(benchmark::State& state) {
  std::mutex lock;
  for ([[maybe_unused]] auto run : state) {
    lock.lock();
    benchmark::ClobberMemory();
    lock.unlock();
  }
}

BENCHMARK(runOurStatus)->Name("error made, copied, dropped/ours");
BENCHMARK(runFloorStatus)->Name("error made, copied, dropped/floor");
BENCHMARK(runOurHeap)->Name("heap allocate and release/ours");
BENCHMARK(runFloorHeap)->Name("heap allocate and release/floor");
BENCHMARK(runOurLock)->Name("lock acquired and released/ours");
BENCHMARK(runFloorLock)->Name("lock acquired and released/floor");

}  // namespace
