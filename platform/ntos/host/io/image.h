#pragma once

#include "ntos/driver.h"

namespace ntoshost {

// Maps a shared object for the driver, which says then where it is. As loadDriverImage.
NTSTATUS mapImage(DRIVER_OBJECT* driver, char const* file);

// Null when the image has no function of the name.
void* findInImage(DRIVER_OBJECT const* driver, char const* name);

// An image between its driver and its unmapping.
struct MappedImage {
  explicit MappedImage(DRIVER_OBJECT const* driver);

  // Does nothing when the driver had none. From now on nobody may be in it.
  void unmap() const;

  void* section;
  void* start;
  u32 size;
  char name[80];
};

}  // namespace ntoshost
