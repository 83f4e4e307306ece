// There is one stream; a second one needs a class of its own that says so.

#include "oxdiagk/tTrace.h"
#include "oxdiagk/tVEXTraceDestination.h"

class tPrivateTrace : public nOXDIAG100::tTrace {
 public:
  explicit tPrivateTrace(nOXDIAG100::iTraceDestination& first) : tTrace(first) {}
};

void streams(nOXDIAG100::iTraceDestination& destination) {
  nOXDIAG100::tTrace empty;                // expect-error: no matching constructor
  nOXDIAG100::tTrace second(destination);  // expect-error: protected
  tPrivateTrace own(destination);
  own.put("text");
}
