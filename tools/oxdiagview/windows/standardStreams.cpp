#include "oxdiagview/standardStreams.h"

#include <fcntl.h>
#include <io.h>
#include <windows.h>

namespace oxdiagview {

void prepareStandardStreams() {
  _setmode(0, _O_BINARY);
  _setmode(1, _O_BINARY);
  SetConsoleOutputCP(CP_UTF8);
}

bool prepareColors() {
  HANDLE const output = GetStdHandle(STD_OUTPUT_HANDLE);
  DWORD mode = 0;
  if (GetConsoleMode(output, &mode) == 0) return false;
  return SetConsoleMode(output, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

}  // namespace oxdiagview
