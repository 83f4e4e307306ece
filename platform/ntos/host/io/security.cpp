#include "ntos/security.h"

#include "file/filesState.h"
#include "io/accessList.h"
#include "io/deviceTable.h"
#include "irqlCheck.h"
#include "ntoshost/devices.h"
#include "ntoshost/faults.h"
#include "ntoshost/userMemory.h"
#include "ntoshost/violation.h"

// Who may open a device, as its driver says it.

namespace ntoshost {
namespace {

constexpr char kOpen[] = "ObOpenObjectByPointer";
constexpr char kSet[] = "ZwSetSecurityObject";

constinit thread_local bool g_is32bit = false;

void requireKernelHandle(u32 attributes, ACCESS_MASK access, KPROCESSOR_MODE mode) {
  bool const isSafe = (attributes & OBJ_KERNEL_HANDLE) != 0 && mode == KernelMode;
  if (isSafe && access == WRITE_DAC) return;
  violation(
      "%s was asked for a handle that programs can use, or not to write security; this is "
      "not done.",
      kOpen);
}

bool hasList(SECURITY_DESCRIPTOR_RELATIVE const& descriptor) {
  return descriptor.Revision == SECURITY_DESCRIPTOR_REVISION &&
         (descriptor.Control & SE_SELF_RELATIVE) != 0 &&
         (descriptor.Control & SE_DACL_PRESENT) != 0 && descriptor.Dacl != 0;
}

DeviceSecurity requireList(SECURITY_DESCRIPTOR_RELATIVE const& descriptor, u32 parts) {
  DeviceSecurity security;
  bool const isSound = parts == DACL_SECURITY_INFORMATION && hasList(descriptor) &&
                       readAccessList(descriptor, security);
  if (isSound) return security;
  violation("%s was given something else than a list of those who may.", kSet);
}

DEVICE_OBJECT* findObject(HANDLE handle) {
  FilesLock const lock;
  OpenFile const* const found = g_files.handles.find(handle);
  return found == nullptr ? nullptr : found->object;
}

HANDLE addHandle(DEVICE_OBJECT* device) {
  OpenFile file = {};
  file.descriptor = -1;
  file.object = device;
  FilesLock const lock;
  return g_files.handles.add(file);
}

}  // namespace

bool hasOwnSecurity(DEVICE_OBJECT* device) {
  DevicesLock const lock;
  requireDevice(device, "hasOwnSecurity");
  return recordOf(device).security.isSet;
}

void set32bitProcess(bool is32bit) {
  g_is32bit = is32bit;
}

}  // namespace ntoshost

NTSTATUS ObOpenObjectByPointer(void* object, u32 attributes, void*, ACCESS_MASK access,
                               OBJECT_TYPE*, KPROCESSOR_MODE mode, HANDLE* handle) {
  using namespace ntoshost;
  requireIrqlAtMost(PASSIVE_LEVEL, kOpen);
  requireKernelHandle(attributes, access, mode);
  if (injectFault(kFaultSecurity)) return STATUS_INSUFFICIENT_RESOURCES;
  ObfReferenceObject(object);
  *handle = addHandle(static_cast<DEVICE_OBJECT*>(object));
  if (*handle != nullptr) return STATUS_SUCCESS;
  ObfDereferenceObject(object);
  return STATUS_INSUFFICIENT_RESOURCES;
}

NTSTATUS ZwSetSecurityObject(HANDLE handle, u32 parts, void const* descriptor) {
  using namespace ntoshost;
  requireIrqlAtMost(PASSIVE_LEVEL, kSet);
  DeviceSecurity const security =
      requireList(*static_cast<SECURITY_DESCRIPTOR_RELATIVE const*>(descriptor), parts);
  if (injectFault(kFaultSecurity)) return STATUS_INSUFFICIENT_RESOURCES;
  DEVICE_OBJECT* const device = findObject(handle);
  if (device == nullptr) return STATUS_INVALID_HANDLE;
  DevicesLock const lock;
  recordOf(device).security = security;
  return STATUS_SUCCESS;
}

BOOLEAN IoIs32bitProcess(IRP*) {
  return ntoshost::g_is32bit ? 1 : 0;
}
