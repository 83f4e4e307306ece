#pragma once

#include "oxdiagk/tTrace.h"

namespace nOXDIAG100 {

// The switches of a trace stream as options know them.
class tTraceSwitchTable {
 public:
  struct tSwitch {
    char const* option;
    u32 tTrace::*value;
    i32 filterField;  // the field that a filter term behind the switch is about, or kNoField
  };

  static constexpr i32 kNoField = -1;
  static constexpr u32 kCount = 12;
  static constexpr u32 kMutex = kCount - 1;  // the one that is not a plain store

  // In the order in which inquire writes them.
  static tSwitch const entries[kCount];
};

}  // namespace nOXDIAG100
