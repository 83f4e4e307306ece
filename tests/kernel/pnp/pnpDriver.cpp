// oxdiagpnp.sys: loads slotbus.sys with a rack plugged in, has Wine's PnP manager drive it, and
// sends what that never does; run while the driver is loaded.

#include "pnpDriver.h"

#include "conformance/testRun.h"
#include "ntos/debug.h"
#include "ntos/driver.h"

// The start of this image, which the linker knows.
extern "C" char const __ImageBase;

namespace {

constinit tEnumerator enumerator;

void unload(DRIVER_OBJECT* /*driver*/) {
  enumerator.close();
}

}  // namespace

tEnumerator& pnpEnumerator() {
  return enumerator;
}

// Succeeds whatever the tests say: their lines tell, and the driver must stay to be unloaded.
extern "C" NTSTATUS DriverEntry(DRIVER_OBJECT* driver, UNICODE_STRING* /*registryPath*/) {
  driver->DriverUnload = &unload;
  DbgPrint("[oxt] image oxdiagpnp.sys at %p\n", &__ImageBase);
  NTSTATUS const status = enumerator.open(*driver);
  if (NT_SUCCESS(status)) oxt::runAllTests();
  return status;
}
