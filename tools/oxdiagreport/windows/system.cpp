#include "oxdiagreport/system.h"

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <cstdio>
#include <cstdlib>

namespace {

unsigned int formerCodePage = 0;

void restoreCodePage() {
  SetConsoleOutputCP(formerCodePage);
}

}  // namespace

int openStandardInput() {
  int const file = _fileno(stdin);
  if (file >= 0) _setmode(file, _O_BINARY);
  return file;
}

void prepareStandardStreams() {
  _setmode(_fileno(stdout), _O_BINARY);
  formerCodePage = GetConsoleOutputCP();
  if (formerCodePage == 0) return;  // no console
  SetConsoleOutputCP(CP_UTF8);
  std::atexit(&restoreCodePage);
}

std::string getExecutiveName() {
  return "none";
}
