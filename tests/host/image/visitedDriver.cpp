// A driver whose image tests are within when it goes.

#include "visitedDriver.h"
#include "ntos/driver.h"

char visitedBytes[64] = "here";

extern "C" void workWithin(void (*work)(void* context), void* context) {
  work(context);
}

extern "C" NTSTATUS DriverEntry(DRIVER_OBJECT* driver, UNICODE_STRING* /*registryPath*/) {
  driver->DriverUnload = [](DRIVER_OBJECT*) {};
  return STATUS_SUCCESS;
}
