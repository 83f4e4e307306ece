#pragma once

// How plain status codes meet.

#include "compiler/types.h"

namespace nQELM100 {

// The first error wins; a warning gives way to an error and to nothing else. Any IRQL.
inline void mergeStatus(i32& status, i32 code) {
  if (status == 0 || (status > 0 && code < 0)) status = code;
}

}  // namespace nQELM100
