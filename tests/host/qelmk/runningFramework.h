#pragma once

// The object framework, and the platform layer beneath, running for the length of a test; at the
// end nothing may be left in the pool.

#include "ntoshost/executive.h"
#include "qelmk/module.h"
#include "vexk/module.h"

class tRunningFramework {
 public:
  tRunningFramework() {
    vexkInitialize();
    qelmkInitialize();
  }
  ~tRunningFramework() {
    qelmkUnload();
    vexkUnload();
    ntoshost::requireNoOutstanding("the test");
  }
  tRunningFramework(tRunningFramework const&) = delete;
  tRunningFramework& operator=(tRunningFramework const&) = delete;
};
