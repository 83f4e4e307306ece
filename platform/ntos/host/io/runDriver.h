#pragma once

#include "io/currentDriver.h"
#include "stack/kernelStack.h"

namespace ntoshost {

// Calls into a driver: on a kernel stack, and on its account.
template <class Call>
NTSTATUS runDriver(DRIVER_OBJECT* driver, Call call) {
  DriverScope const scope(driver);
  NTSTATUS status = STATUS_SUCCESS;
  auto work = [&] { status = call(); };
  onKernelStack(work);
  return status;
}

}  // namespace ntoshost
