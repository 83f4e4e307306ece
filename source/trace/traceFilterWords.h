#pragma once

// The words of filter expressions, as they are read and as they are written.

#include "ntos/types.h"

namespace nOXDIAG100 {

// The field names, in the order of tTraceFilter::tField.
inline constexpr char const* kTraceFilterFields[] = {"compname", "compver",  "linenumber",
                                                     "filename", "threadid", "verbosity"};

// The operators, in the order of their numbers. None begins with one that stands behind it.
inline constexpr char const* kTraceFilterOperators[] = {"==", "!=", ">", "<", ">=", "<="};

// What separates words: the blank, and tab to carriage return.
constexpr bool isTraceFilterBlank(char character) {
  return character == ' ' || (character >= '\t' && character <= '\r');
}

}  // namespace nOXDIAG100
