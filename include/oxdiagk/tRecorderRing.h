#pragma once

#include "compiler/types.h"

namespace nOXDIAG100 {

// The memory of the flight recorder, as a crash dump has it: this head, and behind it `capacity`
// bytes of text, of which the newest stand in front of `written % capacity`. Whoever looks for it
// in a dump finds the signature, and knows it from a chance text by `inverse`.
//
// Numbers are little-endian. All but `written` stay as they are while the ring lives.
struct tRecorderRing {
  static constexpr char kSignature[16] = "oxdiag recorder";
  static constexpr u32 kLayout = 1;

  char signature[16];
  u32 headSize;  // where the text begins: sizeof(tRecorderRing), or more in a later layout
  u32 layout;
  u64 capacity;  // of the text, in bytes
  u64 inverse;   // ~capacity
  u64 written;   // bytes that were put, those taken over from a former ring included
  u64 address;   // of this head

  char* getText() { return reinterpret_cast<char*>(this) + sizeof(*this); }
};
static_assert(sizeof(tRecorderRing) == 56);

}  // namespace nOXDIAG100
