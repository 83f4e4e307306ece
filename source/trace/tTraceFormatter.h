#pragma once

#include <stdarg.h>

#include "ntos/types.h"
#include "oxdiagk/api.h"

namespace nOXDIAG100 {

// The formatter behind tTrace::putf, whose comment in "oxdiagk/tTrace.h" describes the formats.
//
// Allocates nothing, uses no floating point, and reads no more of a text argument than it may have
// to write. Any IRQL at which the format and the text arguments may be read.
class OXDIAG_API tTraceFormatter {
 public:
  // Formats into `buffer` of `size` bytes, of which at most tTrace::kMaxTraceLine are used. Returns
  // the number of characters written, terminator excluded, or -1 when the text and its terminator
  // did not fit: the buffer then holds as much as does fit, terminated. With a null buffer or a
  // size of 0 nothing fits, so the outcome is always -1. A null format counts as an empty one.
  static i32 format(char* buffer, u32 size, char const* format, va_list arguments);

  // The same for any size but 0. A text with a wide one in it may hold NUL characters.
  struct tText {
    u32 length;
    bool isCut;
    bool mayHoldNul;
  };
  static tText formatLine(char* buffer, u32 size, char const* format, va_list arguments);
};

}  // namespace nOXDIAG100
