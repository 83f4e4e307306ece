#include "io/unmappedImages.h"

#include <pthread.h>
#include <string.h>
#include <sys/mman.h>
#include <ucontext.h>

#include "faultHandler.h"
#include "ntoshost/violation.h"

namespace ntoshost {
namespace {

constexpr u32 kCapacity = 1024;

struct Place {
  u64 start;  // 0: nothing, or about to be written
  u32 size;
  char name[sizeof(MappedImage::name)];

  bool contains(u64 address) const {
    u64 const from = __atomic_load_n(&start, __ATOMIC_ACQUIRE);
    return from != 0 && address - from < size;
  }
};

constinit pthread_mutex_t g_lock = PTHREAD_MUTEX_INITIALIZER;
constinit Place g_places[kCapacity] = {};
constinit u32 g_next = 0;

Place const* find(u64 address) {
  for (Place const& place : g_places) {
    if (place.contains(address)) return &place;
  }
  return nullptr;
}

u64 instructionOf(void const* context) {
  return static_cast<u64>(static_cast<ucontext_t const*>(context)->uc_mcontext.gregs[REG_RIP]);
}

void judge(u64 address, char const* what) {
  Place const* const place = find(address);
  if (place == nullptr) return;
  violation("A thread %s the image of the driver %s at offset 0x%llx, which was unloaded.", what,
            place->name, address - place->start);
}

}  // namespace

void requireNoUnmappedImage(u64 address, void const* signalContext) {
  judge(instructionOf(signalContext), "runs in");
  judge(address, "touches");
}

void rememberUnmappedImage(MappedImage const& image) {
  pthread_mutex_lock(&g_lock);
  Place& place = g_places[g_next++ % kCapacity];
  if (place.start != 0) munmap(reinterpret_cast<void*>(place.start), place.size);
  __atomic_store_n(&place.start, 0, __ATOMIC_RELEASE);
  memcpy(place.name, image.name, sizeof(place.name));
  place.size = image.size;
  __atomic_store_n(&place.start, reinterpret_cast<u64>(image.start), __ATOMIC_RELEASE);
  pthread_mutex_unlock(&g_lock);
}

}  // namespace ntoshost
