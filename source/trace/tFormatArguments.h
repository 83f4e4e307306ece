#pragma once

#include <stdarg.h>

#include "ntos/types.h"

namespace nOXDIAG100 {

// The arguments of one formatting, taken one after the other. Of a 64-bit argument that is taken as
// a number the low half counts; what the caller's list points at afterwards is of no use to him.
class tFormatArguments {
 public:
  explicit tFormatArguments(va_list list) { va_copy(copy, list); }
  ~tFormatArguments() { va_end(copy); }
  tFormatArguments(tFormatArguments const&) = delete;
  tFormatArguments& operator=(tFormatArguments const&) = delete;

  // The analyzer does not see that the constructor started the list.
  // NOLINTBEGIN(clang-analyzer-valist.Uninitialized)
  i32 takeNumber() { return va_arg(copy, int); }
  void const* takePointer() { return va_arg(copy, void const*); }
  // NOLINTEND(clang-analyzer-valist.Uninitialized)

 private:
  va_list copy;
};

}  // namespace nOXDIAG100
