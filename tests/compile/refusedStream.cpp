// There is one stream; a second one needs a class of its own that says so. A pointer to a member is
// neither text nor number nor address.

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

struct tSlot {
  u32 getNumber() const noexcept;

  u32 number;
};

void membersOf(tSlot& slot, nOXDIAG100::tTrace& trace) {
  trace.put(&tSlot::number);     // expect-error: deleted
  trace.put(&tSlot::getNumber);  // expect-error: deleted
  trace.put(&slot.number).put(slot.number != 0);
}
