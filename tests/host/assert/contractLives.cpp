// Contracts of a component that stays while the library is unloaded and loaded again.

#include <gtest/gtest.h>

#define OXDIAG_COMPONENT "lives"
#define OXDIAG_COMPONENT_VERSION tSSVersion()

#include "ntos/status.h"
#include "ntoshost/executive.h"
#include "oxdiagk/contractMacros.h"
#include "oxdiagk/module.h"
#include "oxdiagk/tAssertConfiguration.h"
#include "qelmk/module.h"
#include "support/assertSwitches.h"
#include "vexk/module.h"

namespace {

using nOXDIAG100::tAssertConfiguration;

constexpr int kLives = 4;

bool isRequired() {
  bool isEvaluated = false;
  OXDIAG_REQUIRE((isEvaluated = true));
  return isEvaluated;
}

template <u32 place = 0>
bool isCheckedInMade() {
  bool isEvaluated = false;
  OXDIAG_CHECK_IN("lives.made", (isEvaluated = true), "text");
  return isEvaluated;
}

void start() {
  ASSERT_EQ(vexkInitialize(), STATUS_SUCCESS);
  ASSERT_EQ(qelmkInitialize(), STATUS_SUCCESS);
  ASSERT_EQ(oxdiagkInitialize(nullptr), STATUS_SUCCESS);
}

// Memory is poisoned as it is freed, so a switch of a former life would be seen to be read.
void unload() {
  oxdiagkUnload();
  qelmkUnload();
  vexkUnload();
  ntoshost::requireNoOutstanding("the test");
}

}  // namespace

TEST(ContractLives, NothingIsCheckedWithoutTheLibraryAndAgainWithTheNextOne) {
  EXPECT_FALSE(isRequired());
  for (int life = 0; life < kLives; ++life) {
    start();
    EXPECT_TRUE(isRequired());
    EXPECT_TRUE(isRequired());
    unload();
    EXPECT_FALSE(isRequired());
  }
}

TEST(ContractLives, ASwitchOfTheFormerLifeIsForgotten) {
  start();
  EXPECT_TRUE(isRequired());
  tAssertConfiguration::getInstance().disablePreconditions("default");
  EXPECT_FALSE(isRequired());
  unload();
  start();
  EXPECT_TRUE(isRequired());
  unload();
}

TEST(ContractLives, ACategoryThatWasMadeIsGoneWithItsLife) {
  for (int life = 0; life < kLives; ++life) {
    start();
    EXPECT_FALSE(isCheckedInMade());
    configureWords(tAssertConfiguration::getInstance(), "--category", "lives.made");
    EXPECT_TRUE(isCheckedInMade());
    EXPECT_TRUE(isCheckedInMade());
    unload();
    EXPECT_FALSE(isCheckedInMade());
  }
}

TEST(ContractLives, ACategoryThatIsMadeLaterDecidesFromThenOn) {
  start();
  tAssertConfiguration& contracts = tAssertConfiguration::getInstance();
  EXPECT_FALSE(isCheckedInMade());
  EXPECT_FALSE(isCheckedInMade());
  configureWords(contracts, "--category", "lives.made");
  EXPECT_TRUE(isCheckedInMade());
  EXPECT_TRUE(isCheckedInMade<1>());
  contracts.disableChecks("lives.made");
  EXPECT_FALSE(isCheckedInMade());
  EXPECT_FALSE(isCheckedInMade<1>());
  contracts.enableChecks("lives.made");
  EXPECT_TRUE(isCheckedInMade());
  EXPECT_TRUE(isCheckedInMade<1>());
  unload();
}
