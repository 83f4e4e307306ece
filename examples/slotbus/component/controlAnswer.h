#pragma once

#include "oxdiagk/tStatus2.h"

namespace nSLOTBUS100 {

// Where the answer to a device control goes: an address in the caller's memory, which may be bad,
// and its length in bytes.
struct tControlOutput {
  void* address;
  u32 length;
};

// Copies an answer of `size` bytes to the caller and returns how many bytes he got: all or none.
// Fails with STATUS_BUFFER_TOO_SMALL or, at a bad address, with STATUS_ACCESS_VIOLATION. Does
// nothing when `status` is an error already. PASSIVE_LEVEL.
u64 giveAnswer(void const* answer, u32 size, tControlOutput output, nOXDIAG100::tStatus2& status);

}  // namespace nSLOTBUS100
