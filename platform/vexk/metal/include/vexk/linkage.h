#pragma once

// How names cross a module border on metal: not at all, one image holds everything.
#define VEX_EXPORT
#define VEX_IMPORT

// Lets the compiler check a printf-like call. Counted from 1.
#define VEX_PRINTF_FORMAT(formatIndex, firstIndex) \
  __attribute__((format(printf, formatIndex, firstIndex)))
