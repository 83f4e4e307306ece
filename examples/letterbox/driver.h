#pragma once

#include <ntddk.h>

extern "C" DRIVER_INITIALIZE DriverEntry;

// How many letters are in the box, for drivers that share it. IRQL <= APC_LEVEL.
ULONG LetterboxCount(PDEVICE_OBJECT Device);
