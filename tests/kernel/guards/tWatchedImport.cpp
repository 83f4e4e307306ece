#include "guards/tWatchedImport.h"

#include "boot/tModuleImage.h"
#include "driver/testDriver.h"
#include "ntos/driver.h"
#include "wine/redirect.h"

namespace {

// A loaded module, as the kernel and Wine's loader keep it in a ring with all others. The head of
// the ring is none: what stands in its place of the base is null.
struct tLoadedModule {
  tLoadedModule* next;
  void* unused[5];
  void const* base;
};
static_assert(offsetof(tLoadedModule, base) == 0x30);

}  // namespace

tWatchedImport::tWatchedImport(char const* name, void* function) {
  auto const* const own = static_cast<tLoadedModule const*>(testDriverObject->DriverSection);
  for (tLoadedModule const* each = own->next; each != own; each = each->next) {
    if (each->base != nullptr) watch(tModuleImage(each->base).findImport(name), function);
  }
}

tWatchedImport::~tWatchedImport() {
  while (count > 0) {
    --count;
    redirect(places[count], former[count]);
  }
}

void tWatchedImport::watch(void** place, void* function) {
  if (place == nullptr || count == kCapacity) return;
  void* const before = *place;
  if (!redirect(place, function)) return;
  places[count] = place;
  former[count++] = before;
}
