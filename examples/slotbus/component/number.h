#pragma once

#include "ntos/types.h"
#include "slotbus/component/tTextSpan.h"

namespace nSLOTBUS100 {

enum class tNumberResult : u32 {
  kDone,
  kNotANumber,  // empty, or a character that is no digit
  kTooLarge,    // digits only, but more than 64 bits
};

// Reads a whole field as a number: decimal digits, or "0x" and hexadecimal digits of either
// case. No sign, no blanks, nothing behind the digits; leading zeros are fine. `value` is
// written only with kDone. Any IRQL.
tNumberResult readNumber(tTextSpan text, u64& value);

}  // namespace nSLOTBUS100
