#pragma once

// A text of a user-mode program.

#include "ntos/types.h"

namespace nOXDIAG100 {

// Takes a copy, as far as the text can be read. PASSIVE_LEVEL.
class tUserText {
 public:
  // `length` in bytes; a terminator is added.
  tUserText(u64 userAddress, u32 length);
  ~tUserText();

  tUserText(tUserText const&) = delete;
  tUserText& operator=(tUserText const&) = delete;

  // Null when memory was exhausted, or the text longer than kTunnelMostBytes.
  char* getText() const { return text; }

 private:
  char* text;
};

}  // namespace nOXDIAG100
