#pragma once

namespace nCompiler {

inline unsigned long long readTimeStampCounter() {
  return __builtin_ia32_rdtsc();
}

}  // namespace nCompiler
