#pragma once

// Serves the requests of "oxdiagk/stateRequest.h".

#include "vexk/iLib.h"
#include "vexk/memory.h"

namespace nOXDIAG100 {

// The dispatcher of the module named kStateName, exported as long as it lives; where it cannot be
// exported, nobody is served. It has no state of its own; any number of threads may be in it.
class tStateDispatcher : public iLib::iDispatcher {
 public:
  VEX_MODULE_MEMORY

  // The one of the module.
  static tStateDispatcher& getInstance();

  // Build and destroy it: for the tables of the module's entry, and nobody else.
  static void constructInstance();
  static void destroyInstance();

  tStateDispatcher();
  ~tStateDispatcher() override;

  // Answers the request at this address of user memory. PASSIVE_LEVEL, in the context of the
  // requesting program.
  void dispatch(u64 request) override;
};

}  // namespace nOXDIAG100
