#pragma once

// An identifier that is unique in the world.

#include "compiler/types.h"
#include "qelmk/api.h"

namespace nQELM100 {

class iObjectReader;
class iObjectWriter;

// 128 bits in the layout of the kernel's GUID. A plain value: copied freely, any IRQL.
//
//     constexpr tGUID kRackBus(0x7A0C5A9E, 0x31B4, 0x4D0F, {0x9B, 0x1C, 2, 0x77, 0xC1, 0, 8,
//     0x2E});
class QELM_API tGUID {
 public:
  // All zeros.
  constexpr tGUID() = default;

  constexpr tGUID(u32 first, u16 second, u16 third, u8 const (&rest)[8])
      : data1(first), data2(second), data3(third) {
    for (u32 index = 0; index < 8; ++index) data4[index] = rest[index];
  }

  constexpr bool operator==(tGUID const& other) const = default;

  // The form in a stream: data1; data2 in the lower and data3 in the upper half of one value; the
  // first and the last four bytes of data4, the earlier byte lower. Four values of 32 bits. Both
  // do nothing when `status` is negative on entry; a read that fails leaves the value alone.
  void writeExternal(iObjectWriter& writer, i32& status) const;
  void readExternal(iObjectReader& reader, i32& status);

  u32 data1 = 0;
  u16 data2 = 0;
  u16 data3 = 0;
  u8 data4[8] = {};
};
static_assert(sizeof(tGUID) == 16, "crosses module borders");

}  // namespace nQELM100
