// The kernel's door into a driver: the driver's own DriverEntry stands behind it.

#include "ntos/driver.h"
#include "stackCookie.h"

extern "C" NTSTATUS DriverEntry(DRIVER_OBJECT* driver, UNICODE_STRING* registryPath);

extern "C" __attribute__((no_stack_protector)) NTSTATUS enterDriver(DRIVER_OBJECT* driver,
                                                                    UNICODE_STRING* registryPath) {
  seedStackCookie();
  return DriverEntry(driver, registryPath);
}
