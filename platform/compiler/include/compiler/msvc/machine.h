#pragma once

#include <intrin.h>

namespace nCompiler {

inline unsigned long long readTimeStampCounter() {
  return __rdtsc();
}

}  // namespace nCompiler
