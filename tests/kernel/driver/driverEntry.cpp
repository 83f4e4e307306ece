// oxdiagtest.sys: the conformance tests, run while the driver is loaded.

#include "conformance/testRun.h"
#include "driver/testDriver.h"
#include "ntos/debug.h"
#include "ntos/driver.h"

constinit DRIVER_OBJECT* testDriverObject = nullptr;

// The start of this image, which the linker knows.
extern "C" char const __ImageBase;

namespace {

// Without it the kernel would not unload the driver.
void unload(DRIVER_OBJECT* /*driver*/) {
}

}  // namespace

// Succeeds whatever the tests say: their lines tell, and the driver must stay to be unloaded.
extern "C" NTSTATUS DriverEntry(DRIVER_OBJECT* driver, UNICODE_STRING* /*registryPath*/) {
  driver->DriverUnload = &unload;
  testDriverObject = driver;
  DbgPrint("[oxt] image oxdiagtest.sys at %p\n", &__ImageBase);
  oxt::runAllTests();
  return STATUS_SUCCESS;
}
