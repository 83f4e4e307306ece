#include <cstdio>
#include <cstdlib>

#include "support/fuzzing.h"

std::string readable(std::string const& text) {
  std::string shown = "\"";
  for (char const character : text) {
    unsigned const code = static_cast<unsigned char>(character);
    char escaped[8];
    std::snprintf(escaped, sizeof(escaped), "\\%03o", code);
    bool const isPlain = code >= ' ' && code < 0x7F && character != '"' && character != '\\';
    shown += isPlain ? std::string(1, character) : escaped;
  }
  return shown + "\"";
}

void fail(char const* demanded, std::string const& seen) {
  std::fprintf(stderr, "finding: %s\n  seen   %s\n", demanded, seen.c_str());
  std::abort();
}
