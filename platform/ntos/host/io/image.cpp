#include "io/image.h"

#include <dlfcn.h>
#include <link.h>
#include <sys/mman.h>

#include "faultHandler.h"
#include "io/deviceTable.h"
#include "io/removeLocks.h"
#include "io/unmappedImages.h"
#include "ntoshost/violation.h"
#include "wait/heldLocks.h"

namespace ntoshost {
namespace {

constexpr u64 kPageSize = 4096;
constexpr int kEmptyPlace = MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_FIXED_NOREPLACE;

// What the loader tells of the image that it has put at an address.
struct Extent {
  u64 base;
  u64 start;
  u64 end;
};

int measure(dl_phdr_info* image, size_t, void* context) {
  Extent& extent = *static_cast<Extent*>(context);
  if (image->dlpi_addr != extent.base) return 0;
  for (u32 index = 0; index < image->dlpi_phnum; ++index) {
    auto const& segment = image->dlpi_phdr[index];
    if (segment.p_type != PT_LOAD) continue;
    u64 const start = extent.base + segment.p_vaddr;
    if (start < extent.start) extent.start = start;
    if (start + segment.p_memsz > extent.end) extent.end = start + segment.p_memsz;
  }
  return 1;
}

void setExtent(DRIVER_OBJECT& driver) {
  link_map* map = nullptr;
  dlinfo(driver.DriverSection, RTLD_DI_LINKMAP, &map);
  Extent extent = {map->l_addr, ~u64{0}, 0};
  dl_iterate_phdr(measure, &extent);
  u64 const start = extent.start & ~(kPageSize - 1);
  u64 const end = (extent.end + kPageSize - 1) & ~(kPageSize - 1);
  driver.DriverStart = reinterpret_cast<void*>(start);
  driver.DriverSize = static_cast<u32>(end - start);
}

int compareStart(dl_phdr_info* image, size_t, void* start) {
  return image->dlpi_addr == reinterpret_cast<u64>(start) ? 1 : 0;
}

// The first segment of a shared object begins where the object does.
bool isInTheProgram(void* start) {
  return dl_iterate_phdr(compareStart, start) != 0;
}

bool isMapped(char const* file) {
  void* const known = dlopen(file, RTLD_NOW | RTLD_NOLOAD);
  if (known != nullptr) dlclose(known);
  return known != nullptr;
}

// What others would find in it by its address.
void requireUnlocked(MappedImage const& image) {
  void const* const removeLock = forgetRemoveLocks(image.start, image.size);
  if (removeLock != nullptr) {
    violation("The image of the driver %s goes while the remove lock at %p in it is held.",
              image.name, removeLock);
  }
  void const* const lock = ownedLockWithin(image.start, image.size);
  if (lock == nullptr) return;
  violation("The image of the driver %s goes while a thread owns the mutex at %p in it.",
            image.name, lock);
}

}  // namespace

NTSTATUS mapImage(DRIVER_OBJECT* driver, char const* file) {
  if (isMapped(file)) return STATUS_IMAGE_ALREADY_LOADED;
  driver->DriverSection = dlopen(file, RTLD_NOW | RTLD_LOCAL);
  if (driver->DriverSection == nullptr) return STATUS_OBJECT_NAME_NOT_FOUND;
  setExtent(*driver);
  return STATUS_SUCCESS;
}

void* findInImage(DRIVER_OBJECT const* driver, char const* name) {
  return dlsym(driver->DriverSection, name);
}

MappedImage::MappedImage(DRIVER_OBJECT const* driver)
    : section(driver->DriverSection), start(driver->DriverStart), size(driver->DriverSize) {
  static_assert(sizeof(name) == sizeof(DriverText::text));
  __builtin_memcpy(name, DriverText(driver).text, sizeof(name));
}

// The place is taken at once, so that nothing else comes there. What another thread has mapped
// there before is left alone, and the image is not remembered.
void MappedImage::unmap() const {
  if (section == nullptr) return;
  requireUnlocked(*this);
  installFaultHandler();
  dlclose(section);
  if (isInTheProgram(start)) {
    violation("The image of the driver %s at %p stays mapped after its unloading.", name, start);
  }
  void* const place = mmap(start, size, PROT_NONE, kEmptyPlace, -1, 0);
  if (place == start) rememberUnmappedImage(*this);
}

}  // namespace ntoshost
