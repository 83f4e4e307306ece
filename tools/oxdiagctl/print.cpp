#include "oxdiagctl/print.h"

#include <cstdio>

void print(std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), stdout);
}

bool isPrinted() {
  return std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
}
