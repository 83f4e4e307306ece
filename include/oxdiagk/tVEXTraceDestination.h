#pragma once

#include "oxdiagk/iTraceDestination.h"

namespace nOXDIAG100 {

// The destination every trace stream starts with: the platform's debugger print.
//
// It has no state and cannot fail. Its one instance is built by no initialiser and never destroyed,
// so it works before and after every other object of the library. Any thread may use it, at any
// IRQL at which the platform's ssprintf may be called.
class OXDIAG_API tVEXTraceDestination : public iTraceDestination {
 public:
  static tVEXTraceDestination& getInstance();

  tVEXTraceDestination(tVEXTraceDestination const&) = delete;
  tVEXTraceDestination& operator=(tVEXTraceDestination const&) = delete;

  // Prints `text`; it is never taken for a format.
  iTraceDestination& put(char const* text) override;

  // Prints at most `length` characters; an embedded NUL ends the text earlier.
  iTraceDestination& put(char const* text, unsigned int length) override;

  // Has no options of its own.
  void configure(int argc, char** const argv) override;

  // " --destination vex"
  char* inquire(char* buffer, unsigned int size, unsigned int* needed) override;

  u32 open() override;
  void close() override;

  // "VEX print to debugger"
  char const* getDescription() const override;

 private:
  tVEXTraceDestination() = default;
};

}  // namespace nOXDIAG100
