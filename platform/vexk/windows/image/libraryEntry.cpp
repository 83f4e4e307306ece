// The kernel's door into an export driver, exported as DllInitialize: the module's own function of
// that name stands behind it.

#include "ntos/types.h"
#include "stackCookie.h"

extern "C" NTSTATUS DllInitialize(UNICODE_STRING* registryPath);

extern "C" __attribute__((no_stack_protector)) NTSTATUS enterLibrary(UNICODE_STRING* registryPath) {
  seedStackCookie();
  return DllInitialize(registryPath);
}
