// A destination of one's own has to say how it does everything.

#include "oxdiagk/iTraceDestination.h"

class tHalfDestination : public nOXDIAG100::iTraceDestination {
 public:
  iTraceDestination& put(char const* /*text*/) override { return *this; }
};

tHalfDestination destination;  // expect-error: abstract class
