#include "vexk/debug.h"

#include <stdarg.h>

#include "ntos/debug.h"

void ssprintf(char const* format, ...) {
  if (format == nullptr) return;
  va_list arguments;
  va_start(arguments, format);
  // The default component is silent on today's systems; errors of a driver are shown.
  vDbgPrintEx(DPFLTR_IHVDRIVER_ID, DPFLTR_ERROR_LEVEL, format, arguments);
  va_end(arguments);
}

void ssHalt() {
  __asm__ volatile("int3");
}
