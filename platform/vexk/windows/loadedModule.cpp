#include "vexk/loadedModule.h"

#include "ntos/image.h"
#include "windows/tImageHeaders.h"

namespace {

bool isPresent(void const* address) {
  return MmIsAddressValid(const_cast<void*>(address)) != 0;
}

}  // namespace

u32 _vexFindModule(u64 address, tLoadedModule* module) {
  *module = tLoadedModule();
  void* base = nullptr;
  RtlPcToFileHeader(reinterpret_cast<void*>(address), &base);
  if (base == nullptr) return 0;
  module->base = reinterpret_cast<u64>(base);
  tImageHeaders const headers(base, isPresent);
  if (headers.areGood()) headers.describe(*module);
  return 1;
}
