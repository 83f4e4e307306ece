#include "wine/redirect.h"

#include "wine/wineKernel.h"

bool redirect(void** place, void* function) {
  if (place == nullptr) return false;
  void* page = place;
  size_t size = sizeof(*place);
  u32 before = 0;
  if (ZwProtectVirtualMemory(kOwnProcess, &page, &size, kPageReadWrite, &before) < 0) return false;
  *place = function;
  return ZwProtectVirtualMemory(kOwnProcess, &page, &size, before, &before) >= 0;
}
