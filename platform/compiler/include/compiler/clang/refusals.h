#pragma once

#define COMPILER_REFUSES_IF(test, text)                                                 \
  _Pragma("clang diagnostic push") _Pragma("clang diagnostic ignored \"-Wgcc-compat\"") \
      __attribute__((diagnose_if(test, text, "error"))) _Pragma("clang diagnostic pop")
