// The front door before the load, after the unload and in a module whose registry could not be
// built. Every load has a process of its own, whose first one it is.

#include <gtest/gtest.h>

#include "config/tConfigTunnel.h"
#include "config/tInstanceRegistry.h"
#include "ntos/status.h"
#include "ntoshost/executive.h"
#include "oxdiagk/module.h"
#include "oxdiagk/statusCodes.h"
#include "oxdiagk/tAssertConfiguration.h"
#include "package/childProcess.h"
#include "qelmk/module.h"
#include "support/tunnelRecords.h"
#include "vexk/module.h"

namespace {

using namespace nOXDIAG100;

i32 registryStatus() {
  return tInstanceRegistry::getInstance().getConstructionStatus();
}

// No function of the front door has an effect; 0 when it is so.
int findEffect() {
  char name[] = "assert";
  char option[] = "--checks";
  char value[] = "off";
  char* words[] = {option, value};
  if (acquireInstance(name) != kNoHandle || acquireInstance(nullptr) != kNoHandle) return 10;
  for (u32 handle : {kNoHandle, kFirstHandle}) {
    unsigned int needed = 77;
    char buffer[] = "untouched";
    configure(handle);
    configure(handle, "--checks off");
    configure(handle, 2, words);
    pushConfiguration(handle);
    inquire(handle, buffer, sizeof(buffer), &needed);
    popConfiguration(handle);
    releaseInstance(handle);
    if (needed != 77 || buffer[0] != 'u') return 11;
  }
  return 0;
}

// Loads with the nth allocation failing: 0 the registry is there, 1 it is not and has no effect,
// 2 the load was refused, more is wrong.
int loadWithFailure(u64 n) {
  vexkInitialize();
  qelmkInitialize();
  ntoshost::failNth(ntoshost::kFaultMemory, n);
  NTSTATUS const status = oxdiagkInitialize(nullptr);
  ntoshost::clearFaults();
  if (status != STATUS_SUCCESS) return ntoshost::outstandingBlocks() == 0 ? 2 : 3;
  bool const isBuilt = registryStatus() == 0;
  int effect = 0;
  if (!isBuilt) {
    if (registryStatus() != kStatusOutOfMemory) return 4;
    effect = findEffect();
    u32 handle = 77;
    tTestRequest(kNoHandle, acquireRecord(&handle, "trace")).send();
    if (handle != kNoHandle) return 5;
    if (!tAssertConfiguration::getInstance().checksAreEnabled("default")) return 6;
  }
  oxdiagkUnload();
  if (ntoshost::outstandingBlocks() != 0) return 7;
  return isBuilt ? 0 : 1 + effect;
}

}  // namespace

TEST(RegistryLife, BeforeTheLoadThereIsNone) {
  EXPECT_EQ(inAProcess([] { return registryStatus() == kStatusNotInitialized ? 0 : 1; }), 0);
  EXPECT_EQ(inAProcess(findEffect), 0);
}

TEST(RegistryLife, ALockThatCannotBeOpenedGivesItsStatusWhateverElseFails) {
  for (u64 failures : {0u, 1u}) {
    EXPECT_EQ(inAProcess([&] {
                if (failures != 0) ntoshost::failFrom(ntoshost::kFaultMemory, 1);
                tInstanceRegistry const registry;
                return registry.getConstructionStatus() == kStatusNotInitialized ? 0 : 1;
              }),
              0);
  }
}

TEST(RegistryLife, AfterTheUnloadThereIsNoneAndHandlesAreForgotten) {
  EXPECT_EQ(inAProcess([] {
              vexkInitialize();
              qelmkInitialize();
              if (oxdiagkInitialize(nullptr) != STATUS_SUCCESS) return 1;
              if (registryStatus() != 0) return 2;
              if (acquireInstance(nullptr) != kFirstHandle) return 3;
              if (tInstanceRegistry::getInstance().findNamed("trace") == nullptr) return 6;
              oxdiagkUnload();
              if (tInstanceRegistry::getInstance().findNamed("trace") != nullptr) return 7;
              if (ntoshost::outstandingBlocks() != 0) return 4;
              if (registryStatus() != kStatusNotInitialized) return 5;
              return findEffect();
            }),
            0);
}

TEST(RegistryLife, ARegistryThatCannotBeBuiltDoesNotFailTheLoad) {
  int seen[3] = {};
  for (u64 n = 1; n <= 10; ++n) {
    int const outcome = inAProcess([&] { return loadWithFailure(n); });
    ASSERT_TRUE(outcome >= 0 && outcome <= 2) << outcome << " at allocation " << n;
    ++seen[outcome];
  }
  EXPECT_GE(seen[1], 2);  // its lock and its ring
  EXPECT_GE(seen[2], 2);  // its terminator and that of the tunnel
}
