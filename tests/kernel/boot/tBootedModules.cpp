#include "tBootedModules.h"

#include "ntos/debug.h"
#include "ntos/status.h"
#include "ntos/string.h"
#include "oxdiagk/module.h"
#include "qelmk/module.h"
#include "tModuleImage.h"
#include "vexk/module.h"

namespace {

using tDllInitialize = NTSTATUS(UNICODE_STRING* registryPath);
using tDllUnload = NTSTATUS();

struct tModuleName {
  char const* file;
  wchar_t const* serviceKey;
};

constexpr tModuleName kNames[] = {
    {"vexk.dll", L"\\Registry\\Machine\\System\\CurrentControlSet\\Services\\vexk"},
    {"qelmk.dll", L"\\Registry\\Machine\\System\\CurrentControlSet\\Services\\qelmk"},
    {"oxdiagk.dll", L"\\Registry\\Machine\\System\\CurrentControlSet\\Services\\oxdiagk"},
};

// The address of an import is known only at run time, hence no table.
tModuleImage imageOf(u32 index) {
  switch (index) {
    case 0:
      return tModuleImage(reinterpret_cast<void const*>(&vexkInitialize));
    case 1:
      return tModuleImage(reinterpret_cast<void const*>(&qelmkInitialize));
    default:
      return tModuleImage(reinterpret_cast<void const*>(&oxdiagkInitialize));
  }
}

NTSTATUS initialiseModule(u32 index) {
  tModuleImage const image = imageOf(index);
  DbgPrint("[boot] image %s at %p\n", kNames[index].file, image.base());
  auto* const function = reinterpret_cast<tDllInitialize*>(image.findExport("DllInitialize"));
  if (function == nullptr) return STATUS_DRIVER_UNABLE_TO_LOAD;
  UNICODE_STRING key;
  RtlInitUnicodeString(&key, kNames[index].serviceKey);
  return function(&key);
}

NTSTATUS unloadModule(u32 index) {
  auto* const function = reinterpret_cast<tDllUnload*>(imageOf(index).findExport("DllUnload"));
  return function == nullptr ? STATUS_DRIVER_UNABLE_TO_LOAD : function();
}

}  // namespace

NTSTATUS tBootedModules::initialise() {
  for (u32 index = 0; index < kCount; ++index) {
    NTSTATUS const status = initialiseModule(index);
    if (status < 0) {
      DbgPrint("[boot] DllInitialize of %s: 0x%08X\n", kNames[index].file, status);
      unload();
      return status;
    }
    ++initialised;
  }
  return STATUS_SUCCESS;
}

NTSTATUS tBootedModules::unload() {
  NTSTATUS result = STATUS_SUCCESS;
  while (initialised > 0) {
    --initialised;
    NTSTATUS const status = unloadModule(initialised);
    if (status >= 0) continue;
    DbgPrint("[boot] DllUnload of %s: 0x%08X\n", kNames[initialised].file, status);
    result = status;
  }
  return result;
}
