#pragma once

#include <intrin.h>

#include <source_location>

#define COMPILER_RETURNS_NONNULL
#define COMPILER_STAYS_APART __declspec(noinline)
#define COMPILER_CALLER_LINE (::std::source_location::current().line())

namespace nCompiler {

// Were the call before it the last thing its function does, it would become a jump.
inline void keepFrame() {
  _ReadWriteBarrier();
}

}  // namespace nCompiler
