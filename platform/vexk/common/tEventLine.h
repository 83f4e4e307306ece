#pragma once

// The text of an event while it is made. What finds no room is cut. IRQL as _vexLogEvent.

#include <stdarg.h>

#include "vexk/eventLog.h"

class tEventLine {
 public:
  void append(char const* format, ...) VEX_PRINTF_FORMAT(2, 3);
  void appendList(char const* format, va_list arguments);
  void dropNewline();

  char const* getText() const { return text; }

 private:
  u32 length = 0;
  char text[kVexEventTextSize] = "";
};
