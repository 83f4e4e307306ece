#pragma once

#include "ntos/types.h"
#include "vexk/api.h"

// Watches a request from its beginning to its return. A thread that returns to its program while it
// holds a lock, or is in a critical region, is stopped by the kernel with the whole system; a line
// at the debugger before that says which request it was, and which lock. Only what the thread has
// taken meanwhile counts. IRQL <= DISPATCH_LEVEL.
class tReturnWatch {
 public:
  // `what`: of the request, for the line; any text of `length` characters.
  VEX_API tReturnWatch(char const* what, size_t length);
  VEX_API ~tReturnWatch();
  tReturnWatch(tReturnWatch const&) = delete;
  tReturnWatch& operator=(tReturnWatch const&) = delete;

 private:
  void report() const;

  char const* const what;
  size_t const length;
  bool const wasInRegion;
};
