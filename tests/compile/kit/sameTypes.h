#pragma once

// Behind the kit's headers and all of the family's: both mean the same types, so the kit's go
// wherever the family's headers name them.

#include "abiChecks.h"

static_assert(abi::kIsSame<NTSTATUS, i32> && abi::kIsSame<ULONG, u32>);
static_assert(abi::kIsSame<LONGLONG, i64> && abi::kIsSame<ULONGLONG, u64>);
static_assert(abi::kIsSame<USHORT, u16> && abi::kIsSame<UCHAR, u8>);
static_assert(abi::kIsSame<DEVICE_OBJECT, _DEVICE_OBJECT> && abi::kIsSame<IRP, _IRP>);
static_assert(abi::kIsSame<DRIVER_OBJECT, _DRIVER_OBJECT> && abi::kIsSame<GUID, _GUID>);
static_assert(abi::kIsSame<UNICODE_STRING, _UNICODE_STRING>);

static_assert(sizeof(tModuleGUID) == sizeof(GUID));
static_assert(offsetof(tModuleGUID, data4) == offsetof(GUID, Data4));
static_assert(sizeof(tModuleText) == sizeof(UNICODE_STRING));
static_assert(offsetof(tModuleText, MaximumLength) == offsetof(UNICODE_STRING, MaximumLength));
static_assert(offsetof(tModuleText, Buffer) == offsetof(UNICODE_STRING, Buffer));
static_assert(sizeof(nOXDIAG100::tConfigurationLock) == sizeof(KMUTEX));
static_assert(kMemScratch == 0 && PASSIVE_LEVEL == 0);

constexpr GUID kKernelGUID = {0x01020304, 0x0506, 0x0708, {9, 10, 11, 12, 13, 14, 15, 16}};
static_assert(tModuleGUID::of(kKernelGUID).data1 == 0x01020304);
static_assert(tModuleGUID::of(kKernelGUID).data4[7] == 16);

inline void serve(DRIVER_OBJECT& driver) {
  for (auto& dispatch : driver.MajorFunction) dispatch = &pkgWDMWrapperHandleIrp;
  DRIVER_DISPATCH* const own[] = {&vexDispatch, &vexDispatchPnp, &vexDispatchPower,
                                  &vexDispatchSystemControl};
  driver.MajorFunction[IRP_MJ_PNP] = own[1];
}
