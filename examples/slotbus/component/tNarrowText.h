#pragma once

#include "ntos/types.h"

namespace nSLOTBUS100 {

// A wide text as narrow text, for the trace and its options: ASCII as it is, a
// question mark for each other UTF-16 unit. Any IRQL.
class tNarrowText {
 public:
  static constexpr u32 kMaxLength = 1000;  // characters

  // `wide` is terminated; what is longer than kMaxLength is cut.
  explicit tNarrowText(wchar_t const* wide);

  // Belongs to this object; the caller may change the characters.
  char* get() { return text; }

 private:
  char text[kMaxLength + 1];
};

}  // namespace nSLOTBUS100
