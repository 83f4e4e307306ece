#pragma once

#include "ntos/types.h"

namespace nOXDIAG100 {

class tTraceFilter;

// Reads one filter expression into a filter; the grammar is told in "oxdiagk/tTraceFilter.h".
// Cuts nothing and copies nothing: the terms copy what they keep.
class tTraceFilterParser {
 public:
  // Both must outlive the parser; `expression` is not null.
  tTraceFilterParser(tTraceFilter& filter, char const* expression)
      : filter(filter), position(expression) {}

  // Reads the whole expression. To be called once.
  void parse();

 private:
  bool parseTerm();
  u32 takeConnector();
  i32 takeField();
  bool isAtEnd() const { return *position == '\0'; }
  void skipBlanks();

  tTraceFilter& filter;
  char const* position;
};

}  // namespace nOXDIAG100
