// The driver kit's own headers agree with kernelAbi.h.

// mingw-w64 defines these two twice, in winnt's intrinsics and in wdm.h: the latter may stay.
#define __INTRINSIC_DEFINED_InterlockedBitTestAndSet
#define __INTRINSIC_DEFINED_InterlockedBitTestAndReset

#include <ntifs.h>
#include <stdio.h>
#include <wchar.h>

// mingw-w64 has this one for programs only, in winnt.h; the kernel exports it as well.
extern "C" PVOID NTAPI RtlPcToFileHeader(PVOID PcValue, PVOID* BaseOfImage);

#include "abiChecks.h"
#include "kernelAbi.h"
