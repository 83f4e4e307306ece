#pragma once

// How plain status codes meet.

#include "compiler/types.h"

namespace nQELM100 {

// The first error wins; an error replaces a warning, and nothing else does. Any IRQL.
inline void mergeStatus(i32& status, i32 code) {
  if (status == 0 || (status > 0 && code < 0)) status = code;
}

}  // namespace nQELM100
