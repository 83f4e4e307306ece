#include "tEventLine.h"

#include "ntos/format.h"

void tEventLine::append(char const* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  appendList(format, arguments);
  va_end(arguments);
}

// What is cut ends with the last byte, which is 0 from the start.
void tEventLine::appendList(char const* format, va_list arguments) {
  u32 const room = kVexEventTextSize - 1 - length;
  i32 const written = _vsnprintf(text + length, room, format, arguments);
  length += written < 0 ? room : static_cast<u32>(written);
}

void tEventLine::dropNewline() {
  if (length != 0 && text[length - 1] == '\n') text[--length] = '\0';
}
