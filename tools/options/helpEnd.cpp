#include "options/helpEnd.h"

#include <cstdio>

int endOfHelp(std::string_view program, int good, int noOutput) {
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return good;
  std::fprintf(stderr, "%.*s: cannot write to standard output.\n", static_cast<int>(program.size()),
               program.data());
  return noOutput;
}
