// The conformance tests on the host, inside started modules, as in a driver.

#include <gtest/gtest.h>

#include <cstdio>

#include "ntos/status.h"
#include "ntoshost/pool.h"
#include "oxdiagk/module.h"
#include "qelmk/module.h"
#include "vexk/module.h"

namespace {

bool startModules() {
  return vexkInitialize() == STATUS_SUCCESS && qelmkInitialize() == STATUS_SUCCESS &&
         oxdiagkInitialize(nullptr) == STATUS_SUCCESS;
}

void unloadModules() {
  oxdiagkUnload();
  qelmkUnload();
  vexkUnload();
}

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (!startModules()) {
    std::fputs("conformance_tests: the modules did not start\n", stderr);
    return 1;
  }
  int const result = RUN_ALL_TESTS();
  unloadModules();
  ntoshost::requireNoOutstanding("conformance_tests");
  return result;
}
