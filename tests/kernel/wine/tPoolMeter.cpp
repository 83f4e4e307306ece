#include "wine/tPoolMeter.h"

#include "boot/tModuleImage.h"
#include "ntos/pool.h"
#include "oxdiagk/module.h"
#include "vexk/module.h"
#include "wine/redirect.h"

namespace {

constexpr u32 kCapacity = 8192;
constexpr u32 kAnswerTag = ntosPoolTag("vex ");

constinit void* blocks[kCapacity] = {};
constinit u32 count = 0;
constinit bool isFull = false;
constinit bool isLocked = false;

class tMeterGuard {
 public:
  tMeterGuard() {
    while (__atomic_exchange_n(&isLocked, true, __ATOMIC_ACQUIRE)) __builtin_ia32_pause();
  }
  ~tMeterGuard() { __atomic_store_n(&isLocked, false, __ATOMIC_RELEASE); }
  tMeterGuard(tMeterGuard const&) = delete;
  tMeterGuard& operator=(tMeterGuard const&) = delete;
};

void note(void* block) {
  tMeterGuard const guard;
  if (count == kCapacity) {
    isFull = true;
  } else {
    blocks[count++] = block;
  }
}

// A block that was taken before the meter stood there is not known to it.
void forget(void* block) {
  tMeterGuard const guard;
  for (u32 index = count; index > 0; --index) {
    if (blocks[index - 1] != block) continue;
    blocks[index - 1] = blocks[--count];
    return;
  }
}

void* allocateMetered(POOL_TYPE type, size_t size, u32 tag) {
  void* const block = ExAllocatePoolWithTag(type, size, tag);
  bool const isAnswer = type == PagedPool && tag == kAnswerTag;
  if (block != nullptr && !isAnswer) note(block);
  return block;
}

void freeMetered(void* block, u32 tag) {
  forget(block);
  ExFreePoolWithTag(block, tag);
}

bool redirectModule(void const* inside, void* allocate, void* free) {
  tModuleImage const image(inside);
  return redirect(image.findImport("ExAllocatePoolWithTag"), allocate) &&
         redirect(image.findImport("ExFreePoolWithTag"), free);
}

bool redirectModules(void* allocate, void* free) {
  bool const inPlatform =
      redirectModule(reinterpret_cast<void const*>(&vexkInitialize), allocate, free);
  bool const inLibrary =
      redirectModule(reinterpret_cast<void const*>(&oxdiagkInitialize), allocate, free);
  return inPlatform && inLibrary;
}

}  // namespace

tPoolMeter::tPoolMeter()
    : isInstalled(redirectModules(reinterpret_cast<void*>(&allocateMetered),
                                  reinterpret_cast<void*>(&freeMetered))) {
}

tPoolMeter::~tPoolMeter() {
  redirectModules(reinterpret_cast<void*>(&ExAllocatePoolWithTag),
                  reinterpret_cast<void*>(&ExFreePoolWithTag));
}

bool tPoolMeter::isSound() const {
  tMeterGuard const guard;
  return isInstalled && !isFull;
}

u32 tPoolMeter::countBlocks() const {
  tMeterGuard const guard;
  return count;
}
