// The slots of the assertion configuration's virtual operations, which other modules call by
// position.

#include "conformance/harness.h"
#include "support/assertSwitches.h"
#include "vexk/placementNew.h"

namespace {

using nOXDIAG100::tConfigurable;

// The operation in a slot, counted from 1 as the interface counts them.
template <class Function>
Function* getSlot(void* object, u32 slot) {
  return reinterpret_cast<Function*>((*static_cast<void***>(object))[slot - 1]);
}

using tDestroy = void*(void* object, u32 flags);  // flags 0: destroy without freeing
using tConfigureVector = void(void* object, int argc, char** argv);
using tConfigureText = void(void* object, char const* options);
using tAct = void(void* object);
using tInquire = void(void* object, char* buffer, unsigned int size, unsigned int* needed);

bool isDestroyed = false;

class tWatchedContracts : public tPrivateContracts {
 public:
  ~tWatchedContracts() override { isDestroyed = true; }
};

}  // namespace

TEST(AssertSlots, ConfigureIsInTheSecondToFourthSlot) {
  tPrivateContracts contracts;
  void* const object = static_cast<tConfigurable*>(&contracts);
  char option[] = "--checks";
  char value[] = "off";
  char* words[] = {option, value};
  getSlot<tConfigureVector>(object, 2)(object, 2, words);
  EXPECT_FALSE(contracts.checksAreEnabled("default"));
  getSlot<tConfigureText>(object, 3)(object, "--checks on --break off");
  EXPECT_TRUE(contracts.checksAreEnabled("default"));
  EXPECT_FALSE(contracts.breakOnViolationIsEnabled("default"));
  u32 const before = switchesOf(contracts, "default");
  getSlot<tAct>(object, 4)(object);
  EXPECT_EQ(switchesOf(contracts, "default"), before);
}

TEST(AssertSlots, InquirePushAndPopAreInTheLastThreeSlots) {
  tPrivateContracts contracts;
  void* const object = static_cast<tConfigurable*>(&contracts);
  char buffer[20];
  unsigned int needed = 0;
  getSlot<tInquire>(object, 5)(object, buffer, sizeof(buffer), &needed);
  EXPECT_STREQ(buffer, " --category default");
  EXPECT_TRUE(needed > 500);
  getSlot<tAct>(object, 6)(object);
  contracts.disableChecks("default");
  getSlot<tAct>(object, 7)(object);
  EXPECT_TRUE(contracts.checksAreEnabled("default"));
}

TEST(AssertSlots, FirstDestroys) {
  alignas(tWatchedContracts) static constinit u8 storage[sizeof(tWatchedContracts)] = {};
  tWatchedContracts* const contracts = new (storage) tWatchedContracts;
  contracts->configure("--category rack");
  contracts->pushConfiguration();
  void* const object = static_cast<tConfigurable*>(contracts);
  isDestroyed = false;
  getSlot<tDestroy>(object, 1)(object, 0);
  EXPECT_TRUE(isDestroyed);
}
