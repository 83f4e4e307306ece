#pragma once

#include <string>
#include <vector>

#include "compiler/types.h"

// A function that was being executed, and where.
struct tSourcePlace {
  std::string function;
  std::string file;  // empty when it is not known
  u64 line;          // 0 when it is not known
};

// The places in a line of JSON with which LLVM's symbolizer answers, innermost first; none in any
// other text.
std::vector<tSourcePlace> placesIn(std::string const& answer);
