#pragma once

#include "config/options/tInquiryText.h"

namespace nOXDIAG100 {

class tTraceFilterTerm;

// Writes a list of terms as option text, in the manner of inquire. Allocates nothing.
class tTraceFilterWriter {
 public:
  // A null buffer or a size of 0 (in bytes) only counts.
  tTraceFilterWriter(char* buffer, u32 size) : text(buffer, size) {}

  // Writes the list that begins with `first`, null meaning an empty one. To be called once.
  // Stores the length plus one through `needed` unless that is null; returns where the text in the
  // buffer ends.
  char* write(tTraceFilterTerm const* first, unsigned int* needed);

 private:
  void appendTerm(tTraceFilterTerm const& term);

  tInquiryText text;
};

}  // namespace nOXDIAG100
