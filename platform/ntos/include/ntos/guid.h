#pragma once

#include "ntos/types.h"

// A 16-byte identifier as the kernel's structures hold it.
using GUID = struct _GUID;
struct _GUID {
  u32 Data1;
  u16 Data2;
  u16 Data3;
  u8 Data4[8];
};
static_assert(sizeof(GUID) == 16 && offsetof(GUID, Data4) == 8);
