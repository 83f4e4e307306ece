#pragma once

#include "compiler/types.h"

// A 16-byte identifier of a module or a kind of bus, laid out as the kernel's GUID.
struct tModuleGUID {
  u32 data1;
  u16 data2;
  u16 data3;
  u8 data4[8];

  // The kernel's identifier as one of these. Any IRQL.
  template <class G>
  static constexpr tModuleGUID of(G const& guid) {
    tModuleGUID same = {guid.Data1, guid.Data2, guid.Data3, {}};
    for (u32 index = 0; index < sizeof(same.data4); ++index) same.data4[index] = guid.Data4[index];
    return same;
  }
};
static_assert(sizeof(tModuleGUID) == 16);
