#pragma once

#include "ntos/types.h"

namespace ntoshost {

// What a security descriptor allows, by who asks.
struct DeviceSecurity {
  static constexpr u32 kRead = 1;
  static constexpr u32 kWrite = 2;
  static constexpr u32 kExecute = 4;
  static constexpr u32 kAll = kRead | kWrite | kExecute;

  bool isSet;  // without one everybody has all rights
  u32 system;
  u32 administrators;
  u32 everyone;
};

// Whether the calling thread's user has the rights to open such a device.
bool mayOpen(DeviceSecurity const& security);

}  // namespace ntoshost
