// Errors, what explains them, and the memory and the lock beneath; a contract that holds.

#include <vector>

#include "measure.h"

#define OXDIAG_COMPONENT "slotbus"
#define OXDIAG_COMPONENT_VERSION tSSVersion(1, 0, 0, tSSVersion::kPhaseReleased, 1, 0)

#include "oxdiagk/contractMacros.h"
#include "oxdiagk/statusMacros.h"
#include "oxdiagk/tStatus2Heap.h"
#include "qelmk/qelmk.h"
#include "reportItems.h"
#include "tPlainTranslator.h"
#include "vexk/sync.h"

using nOXDIAG100::tStatus2;
using nOXDIAG100::tStatus2Description;
using nOXDIAG100::tStatus2Heap;

namespace {

constexpr i32 kCode = -61007;
constexpr u32 kItems = 10;

void measureContract() {
  u32 slot = 3;
  u32 evaluations = 0;
  measurePath("contract that holds", [&] {
    keep(slot);
    OXDIAG_REQUIRE((++evaluations, slot < 17));
  });
  demand(evaluations >= kOperations, "contract that holds");
}

void measureLock() {
  i32 status = 0;
  iSync* lock = syncOpen(nullptr, tSyncDescriptor{}, status);
  demand(lock != nullptr, "lock acquired and released");
  measurePath("lock acquired and released", [&] {
    static_cast<void>(lock->acquire(kSyncWaitForever));
    lock->release();
  });
  syncClose(lock);
}

void measureError() {
  bool hasStack = true;
  measurePath("error made, copied and dropped", [&] {
    tStatus2 status;
    OXDIAG_SET_STATUS(status, kCode);
    tStatus2 const copy(status);
    keep(copy);
  });
  tStatus2 last;
  OXDIAG_SET_STATUS(last, kCode);
  u64 stack[tStatus2::kStackTraceLength] = {};
  last.getStackTrace(stack);
  for (u64 const address : stack) hasStack = hasStack && address != 0;
  demand(hasStack, "error made, copied and dropped");
}

// With frames enough below it for a whole call stack.
[[gnu::noinline]] void measureErrorBelow(u32 frames) {
  if (frames == 0) {
    measureError();
  } else {
    measureErrorBelow(frames - 1);
  }
  keepMemory();
}

void measureHeap() {
  constexpr u32 kLive = 60;
  constexpr i32 kSize = 240;
  i32 status = 0;
  tStatus2Heap& heap = *tStatus2Heap::getHeap(status);
  std::vector<void*> live;
  for (u32 index = 0; index < kLive; ++index)
    live.push_back(heap.allocateMemoryBlock(kSize, status));
  measurePath("block of the status heap beside 60", [&] {
    void* const block = heap.allocateMemoryBlock(kSize, status);
    keep(block);
    heap.releaseMemoryBlock(block, status);
  });
  for (void* const block : live) heap.releaseMemoryBlock(block, status);
  demand(status == 0, "block of the status heap beside 60");
}

size_t write(tStatus2 const& value, std::vector<u8>& bytes) {
  nQELM100::tBinaryObjectWriter writer(bytes.data(), bytes.size());
  i32 status = 0;
  value.writeExternal(writer, status);
  writer.finish(status);
  return status < 0 ? 0 : writer.getSize();
}

void measureStream(tStatus2Description const& description) {
  tStatus2 value;
  OXDIAG_SET_STATUS_WITH_DESCRIPTION(value, kCode, description);
  std::vector<u8> bytes(4096);
  size_t size = 0;
  measurePath("ten items written", [&] { size = write(value, bytes); });
  i32 status = 0;
  measurePath("ten items read", [&] {
    nQELM100::tBinaryObjectReader reader(bytes.data(), size, status);
    tStatus2 read;
    read.readExternal(reader, status);
    keep(read);
  });
  demand(size != 0 && status == 0, "ten items read");
}

void measureItems() {
  tStatus2 status;
  tStatus2Description description(status);
  addItems(description, kItems, status);
  i32 code = 0;
  measurePath("ten items cloned", [&] { delete description.clone(code); });
  measureStream(description);
  tPlainTranslator const translator;
  measurePath("ten items rendered", [&] {
    _STL::wstring text;
    description.generateReport(translator, text, status);
    keep(text);
  });
  demand(code == 0 && !status.isError(), "ten items rendered");
}

}  // namespace

void measureStatuses() {
  measureContract();
  measureLock();
  measureErrorBelow(tStatus2::kStackTraceLength);
  measureHeap();
  measureItems();
}
