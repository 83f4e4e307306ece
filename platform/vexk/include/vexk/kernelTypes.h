#pragma once

// The kernel's structures that the family's headers name, by the tags that the driver kit gives
// them. Only their addresses are handed around here: whoever looks into one includes the kit's
// headers, before or after these. Where a header says i32 for a status, the kit says NTSTATUS,
// which is the same type.

struct _DEVICE_OBJECT;
struct _DRIVER_OBJECT;
struct _GUID;
struct _IRP;
struct _UNICODE_STRING;
