// The driver kit's own headers give the kernel's numbers the values of the table that
// cmake/kernelNames.py makes of them.

// mingw-w64 defines these two twice, in winnt's intrinsics and in wdm.h: the latter may stay.
#define __INTRINSIC_DEFINED_InterlockedBitTestAndSet
#define __INTRINSIC_DEFINED_InterlockedBitTestAndReset

#include <ntifs.h>
#include <ntstatus.h>

#include "trace/kernelNames.h"

#define CHECK(number, name) static_assert(static_cast<ULONG>(name) == (number));
#define CHECK_MINOR(number, name) static_assert((name) == ((number)&0xFF));

OXDIAG_STATUS_NAMES(CHECK)
OXDIAG_IRP_MAJOR_NAMES(CHECK)
OXDIAG_IRP_MINOR_NAMES(CHECK_MINOR)
OXDIAG_IRQL_NAMES(CHECK)
OXDIAG_DEVICE_POWER_NAMES(CHECK)
OXDIAG_SYSTEM_POWER_NAMES(CHECK)

// The major codes that have minor codes.
static_assert(IRP_MJ_INTERNAL_DEVICE_CONTROL == 0x0F && IRP_MJ_POWER == 0x16);
static_assert(IRP_MJ_SYSTEM_CONTROL == 0x17 && IRP_MJ_PNP == 0x1B);
