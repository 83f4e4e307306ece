#pragma once

#include "ntos/types.h"

namespace nSLOTBUS100 {

// The name of a file as the kernel wants it. Any IRQL.
class tKernelPath {
 public:
  static constexpr u32 kMaxLength = 520;  // characters

  // A path with a drive letter, such as C:\racks\bench3.txt, gets the \??\ that leads from the
  // kernel's names to drive letters; any other is taken as it is. `second` is appended to `first`.
  // What is longer than the object can hold is cut.
  explicit tKernelPath(wchar_t const* first, wchar_t const* second = L"");

  wchar_t const* get() const { return text; }

 private:
  void append(wchar_t const* more);

  u32 length = 0;
  wchar_t text[kMaxLength + 1];
};

}  // namespace nSLOTBUS100
