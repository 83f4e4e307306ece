// Apart from the other bodies of the interface: only this one needs the trace stream.

#include "oxdiagk/iTraceDestination.h"
#include "oxdiagk/tTrace.h"

namespace nOXDIAG100 {

void iTraceDestination::leaveStream() {
  tTrace& trace = tTrace::getInstance();
  if (trace.getDestination() != this) return;
  // As words, because splitting a text takes memory, and there may be none.
  char option[] = "--destination";
  char name[] = "vex";
  char* words[] = {option, name};
  trace.configure(2, words);
}

}  // namespace nOXDIAG100
