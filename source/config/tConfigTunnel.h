#pragma once

// Serves the requests that user-mode programs send, see "oxdiagk/tunnelRequest.h".

#include "ntos/types.h"
#include "oxdiagk/api.h"
#include "oxdiagk/tConfigurationLock.h"
#include "vexk/iLib.h"
#include "vexk/memory.h"

namespace nOXDIAG100 {

// The dispatcher of the module named kTunnelName, exported as long as it lives; where it cannot be
// exported, nobody is served. Any number of threads may be in it.
// Slot order: destructor, dispatch.
class OXDIAG_API tConfigTunnel : public iLib::iDispatcher {
 public:
  VEX_MODULE_MEMORY

  // The one of the module.
  static tConfigTunnel& getInstance();

  // Build and destroy it: for the tables of the module's entry, and nobody else. Before and after,
  // dispatch does nothing.
  static void constructInstance();
  static void destroyInstance();

  // Ends the requests that run at their next record: what follows waits for them, and they may have
  // billions of records before them. Any thread.
  void endRequests();

  tConfigTunnel();
  ~tConfigTunnel() override;

  // Runs the records of the request at this address of user memory. PASSIVE_LEVEL, in the context
  // of the requesting program.
  void dispatch(u64 request) override;

 protected:
  // The module's tunnel before and after its life.
  explicit tConfigTunnel(tAtRest) : iDispatcher(nullptr) {}

 private:
  bool isEnding = false;  // atomic
};

}  // namespace nOXDIAG100
