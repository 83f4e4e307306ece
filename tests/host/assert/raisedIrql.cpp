// Contracts above PASSIVE_LEVEL. The executive stops the program when a call is made at an IRQL
// that its contract forbids, so these tests also show that no such call is made.

#define OXDIAG_COMPONENT "irql"
#define OXDIAG_COMPONENT_VERSION tSSVersion()

#include "ntos/irql.h"
#include "oxdiagk/contractMacros.h"
#include "oxdiagk/tAssertConfiguration.h"
#include "trace/capturedPrint.h"
#include "trace/startedModules.h"

namespace {

template <class Work>
void runAt(KIRQL irql, Work work) {
  KIRQL former = PASSIVE_LEVEL;
  KeRaiseIrql(irql, &former);
  work();
  KeLowerIrql(former);
}

}  // namespace

TEST(ContractIrql, ContractsAreCheckedAtAnyLevelAndAllocateNothing) {
  u32 evaluations = 0;
  ntoshost::watchCalls(ntoshost::kFaultMemory);
  runAt(HIGH_LEVEL, [&] {
    OXDIAG_REQUIRE(++evaluations == 1);
    OXDIAG_CHECK_IN("no such category", ++evaluations == 1, "text");
  });
  EXPECT_EQ(evaluations, 1u);
  EXPECT_EQ(ntoshost::fallibleCallsSeen(), 0u);
}

TEST(ContractIrql, SwitchesAreSetAtAnyLevel) {
  auto& contracts = nOXDIAG100::tAssertConfiguration::getInstance();
  runAt(HIGH_LEVEL, [&] { contracts.disableChecks("warning"); });
  EXPECT_FALSE(contracts.checksAreEnabled("warning"));
  runAt(HIGH_LEVEL, [&] { contracts.enableChecks("warning"); });
  EXPECT_TRUE(contracts.checksAreEnabled("warning"));
}

TEST(ContractIrql, AContractThatDoesNotHoldIsReportedAtAnyLevelThatTheDestinationAllows) {
  tCapturedPrint captured;
  ntoshost::watchCalls(ntoshost::kFaultMemory);
  runAt(HIGH_LEVEL, [] { OXDIAG_REQUIRE_IN("warning", 1 == 2, "too hot"); });
  EXPECT_EQ(ntoshost::fallibleCallsSeen(), 0u);
  EXPECT_NE(captured.text().find("ASSERTION WARNING: too hot\n"), std::string::npos);
}
