#include "pool/pagedMemory.h"

#include <cpuid.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <ucontext.h>

#include "faultHandler.h"
#include "io/currentDriver.h"
#include "irqlCheck.h"
#include "ntoshost/pool.h"
#include "ntoshost/violation.h"
#include "pool/poolState.h"
#include "stack/sanitized.h"

// Each thread has its own rights on a protection key, in a register that takes no system call to
// write. So one thread at DISPATCH_LEVEL is refused what the others may go on to use.

namespace ntoshost {
namespace {

constexpr int kUnasked = -1;
constexpr int kNone = -2;
constexpr size_t kSmallest = 128;  // bytes; the sizes of pieces are this and its doubles
constexpr size_t kSizes = 10;
constexpr size_t kLargest = kSmallest << (kSizes - 1);
constexpr size_t kSlab = size_t{1} << 20;
constexpr size_t kPageSize = 4096;

struct FreePiece {
  FreePiece* next;
};

constinit int g_key = kUnasked;
constinit FreePiece* g_free[kSizes] = {};
constinit u8* g_slab = nullptr;  // what is left of the last one
constinit size_t g_slabLeft = 0;
constinit thread_local bool g_isPrepared = false;

int readKey() {
  return __atomic_load_n(&g_key, __ATOMIC_ACQUIRE);
}

bool isShut() {
  return KeGetCurrentIrql() >= DISPATCH_LEVEL;
}

void setRights(bool isOpen) {
  pkey_set(readKey(), isOpen ? 0 : PKEY_DISABLE_ACCESS);
}

bool hasKey() {
  if (readKey() == kUnasked) {
    int const key = isSanitized() ? kNone : pkey_alloc(0, 0);
    if (key >= 0) installFaultHandler();
    __atomic_store_n(&g_key, key >= 0 ? key : kNone, __ATOMIC_RELEASE);
  }
  return readKey() >= 0;
}

u8* mapPages(size_t size) {
  void* const pages = mmap(nullptr, size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (pages == MAP_FAILED) return nullptr;
  if (pkey_mprotect(pages, size, PROT_READ | PROT_WRITE, readKey()) == 0) {
    return static_cast<u8*>(pages);
  }
  munmap(pages, size);
  return nullptr;
}

size_t wholePages(size_t size) {
  return (size + kPageSize - 1) & ~(kPageSize - 1);
}

size_t indexOf(size_t size) {
  size_t index = 0;
  while (kSmallest << index < size) ++index;
  return index;
}

// What is left of the slab before is too small for this size and stays unused.
void* cut(size_t size) {
  if (g_slabLeft < size) {
    u8* const slab = mapPages(kSlab);
    if (slab == nullptr) return nullptr;
    g_slab = slab;
    g_slabLeft = kSlab;
  }
  u8* const piece = g_slab;
  g_slab += size;
  g_slabLeft -= size;
  return piece;
}

void* takePiece(size_t size) {
  size_t const index = indexOf(size);
  FreePiece* const piece = g_free[index];
  if (piece == nullptr) return cut(kSmallest << index);
  g_free[index] = piece->next;
  return piece;
}

void givePiece(void* memory, size_t size) {
  FreePiece* const piece = static_cast<FreePiece*>(memory);
  FreePiece*& first = g_free[indexOf(size)];
  piece->next = first;
  first = piece;
}

// Where the register of the rights lies among the registers that a signal has saved; 0 when they
// are not saved there. Intel's manual, volume 1, chapter 13: the area, its header at 512, component
// 9.
constexpr u32 kComponent = 9;
u32 rightsOffset() {
  u32 size = 0, offset = 0, unused = 0, unusedToo = 0;
  if (__get_cpuid_count(0xD, kComponent, &size, &offset, &unused, &unusedToo) == 0) return 0;
  return size == 0 ? 0 : offset;
}

bool savesRights(u8 const* area) {
  constexpr size_t kMarkOffset = 464;  // what Linux tells about the area, in bytes of its own
  constexpr u32 kMark = 0x46505853;
  u32 mark;
  memcpy(&mark, area + kMarkOffset, sizeof(mark));
  u64 features;
  memcpy(&features, area + kMarkOffset + 8, sizeof(features));
  return mark == kMark && (features >> kComponent & 1) != 0;
}

// Lets the interrupted code into the key's pages when it goes on. False when that is not possible.
bool letIn(void* signalContext, u32 key) {
  u8* const area =
      reinterpret_cast<u8*>(static_cast<ucontext_t*>(signalContext)->uc_mcontext.fpregs);
  u32 const offset = rightsOffset();
  if (area == nullptr || offset == 0 || !savesRights(area)) return false;
  constexpr size_t kHeader = 512;
  u64 present;
  memcpy(&present, area + kHeader, sizeof(present));
  u32 rights = 0;
  if ((present >> kComponent & 1) != 0) memcpy(&rights, area + offset, sizeof(rights));
  rights &= ~(u32{3} << 2 * key);
  present |= u64{1} << kComponent;
  memcpy(area + offset, &rights, sizeof(rights));
  memcpy(area + kHeader, &present, sizeof(present));
  return true;
}

Block* blockAround(BlockList const& list, u64 address) {
  for (Block* block = list.oldest; block != nullptr; block = block->newer) {
    if (address - reinterpret_cast<u64>(block->data()) < block->size) return block;
  }
  return nullptr;
}

[[noreturn]] void rejectTouch(u64 address) {
  PoolLock const lock;
  KIRQL const level = KeGetCurrentIrql();
  CurrentDriverText const driver;
  Block* block = blockAround(g_pool.taken, address);
  if (block == nullptr) block = blockAround(g_pool.heldBack, address);
  if (block == nullptr) {
    violation("Paged memory at %p was touched at IRQL %u (%s) by %s.",
              reinterpret_cast<void*>(address), level, irqlName(level), driver.text);
  }
  violation(
      "Byte %llu of the block of %zu bytes of PagedPool with tag '%s' at %p was touched at IRQL %u "
      "(%s) by %s.",
      address - reinterpret_cast<u64>(block->data()), block->size, TagText(block->tag).text,
      static_cast<void*>(block->data()), level, irqlName(level), driver.text);
}

}  // namespace

void* takePagedMemory(size_t size) {
  if (!hasKey()) return aligned_alloc(16, size);
  preparePagedAccess();
  return size <= kLargest ? takePiece(size) : mapPages(wholePages(size));
}

void givePagedMemory(void* memory, size_t size) {
  if (!hasKey()) return free(memory);
  if (size <= kLargest) {
    givePiece(memory, size);
  } else {
    munmap(memory, wholePages(size));
  }
}

void notePagingBorder(bool isAbove) {
  if (readKey() < 0) return;
  setRights(!isAbove);
  g_isPrepared = true;
}

void preparePagedAccess() {
  if (g_isPrepared || readKey() < 0) return;
  if (!isShut()) setRights(true);
  g_isPrepared = true;
}

PagedAccess::PagedAccess() : m_wasShut(readKey() >= 0 && isShut()) {
  if (m_wasShut) {
    setRights(true);
  } else {
    preparePagedAccess();
  }
}

PagedAccess::~PagedAccess() {
  if (m_wasShut) setRights(false);
}

bool servePagedFault(u64 address, u32 key, void* signalContext) {
  if (readKey() < 0 || key != static_cast<u32>(readKey())) return false;
  if (isShut()) rejectTouch(address);
  return letIn(signalContext, key);
}

bool isPagedPoolGuarded() {
  PoolLock const lock;
  return hasKey();
}

}  // namespace ntoshost
