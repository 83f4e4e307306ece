#pragma once

#define COMPILER_RETURNS_NONNULL [[gnu::returns_nonnull]]
#define COMPILER_STAYS_APART [[gnu::noinline]]
#define COMPILER_CALLER_LINE __builtin_LINE()
#define COMPILER_KNOWS_LENGTH(text) \
  ((text) != nullptr && __builtin_constant_p(__builtin_strlen(text)))

namespace nCompiler {

// Were the call before it the last thing its function does, it would become a jump.
inline void keepFrame() {
  __asm__ volatile("");
}

}  // namespace nCompiler
