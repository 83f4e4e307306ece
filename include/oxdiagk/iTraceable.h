#pragma once

#include "oxdiagk/api.h"
#include "vexk/memory.h"

namespace nOXDIAG100 {

class tTrace;

// An object that can write itself into a trace line.
//
//     class tDevice : public iTraceable {
//      public:
//       void put(tTrace& trace) const override { trace.put("slot ").put(slot, 10); }
//       ...
//     };
//
//     trace.putPrefix(...).put(device).endl();
//
// Slot order is part of the interface on Windows: destructor, put.
class OXDIAG_API iTraceable {
 public:
  VEX_MODULE_MEMORY

  virtual ~iTraceable() = 0;

  // Appends the object's text to the current line of `trace`. It may use every put of the stream;
  // it opens no line and ends none. Runs in the tracing thread at its IRQL, with the trace mutex
  // held when "--mutex on" is set, so it must not wait for another tracing thread.
  virtual void put(tTrace& trace) const = 0;
};

}  // namespace nOXDIAG100
