#pragma once

// The switches of assertion categories as tests know them, written down a second time.

#include "oxdiagk/tAssertConfiguration.h"

// A configuration of the test's own.
class tPrivateContracts : public nOXDIAG100::tAssertConfiguration {
 public:
  tPrivateContracts() = default;
};

struct tTestSwitch {
  using tConfiguration = nOXDIAG100::tAssertConfiguration;

  char const* option;
  bool (*isOn)(tConfiguration const& configuration, char const* category);
  void (*enable)(tConfiguration& configuration, char const* category);
  void (*disable)(tConfiguration& configuration, char const* category);
};

#define TEST_SWITCH(option, query, Name)                                                    \
  {                                                                                         \
    option, [](tTestSwitch::tConfiguration const& o, char const* c) { return o.query(c); }, \
        [](tTestSwitch::tConfiguration& o, char const* c) { o.enable##Name(c); },           \
        [](tTestSwitch::tConfiguration& o, char const* c) { o.disable##Name(c); }           \
  }
inline constexpr tTestSwitch kTestSwitches[] = {
    TEST_SWITCH("--terminate", terminateOnViolationIsEnabled, TerminateOnViolation),
    TEST_SWITCH("--break", breakOnViolationIsEnabled, BreakOnViolation),
    TEST_SWITCH("--preconditions", preconditionsAreEnabled, Preconditions),
    TEST_SWITCH("--postconditions", postconditionsAreEnabled, Postconditions),
    TEST_SWITCH("--classinvariants", classInvariantsAreEnabled, ClassInvariants),
    TEST_SWITCH("--loopinvariants", loopInvariantsAreEnabled, LoopInvariants),
    TEST_SWITCH("--checks", checksAreEnabled, Checks),
    TEST_SWITCH("--exceptions", exceptionsAreEnabled, Exceptions),
};
#undef TEST_SWITCH
inline constexpr u32 kTestSwitchCount = 8;

inline constexpr char const* kBuiltInNames[] = {"default", "statusFatal", "statusWarning",
                                                "warning"};

// The switches of a category as bits, the first of the table in bit 0.
inline u32 switchesOf(nOXDIAG100::tAssertConfiguration const& contracts, char const* category) {
  u32 bits = 0;
  for (u32 index = 0; index < kTestSwitchCount; ++index) {
    if (kTestSwitches[index].isOn(contracts, category)) bits |= 1u << index;
  }
  return bits;
}

inline constexpr u32 kSwitchTerminate = 0x01;
inline constexpr u32 kSwitchBreak = 0x02;
inline constexpr u32 kSwitchPreconditions = 0x04;
inline constexpr u32 kSwitchChecks = 0x40;
inline constexpr u32 kSwitchExceptions = 0x80;
inline constexpr u32 kSwitchesOfANewCategory = 0xFE;

// The inquired text, in fixed storage; one object at a time for each slot.
inline constinit char contractsTextStorage[2][4096] = {};

struct tContractsText {
  explicit tContractsText(nOXDIAG100::tAssertConfiguration& contracts, u32 slot = 0)
      : text(contractsTextStorage[slot]) {
    contracts.inquire(text, sizeof(contractsTextStorage[0]), &needed);
  }

  char* text;
  unsigned int needed = 0;
};

// Hands the words to configure, which does not change them.
template <class... tWords>
void configureWords(nOXDIAG100::tAssertConfiguration& contracts, tWords... texts) {
  char* words[] = {const_cast<char*>(texts)...};
  contracts.configure(sizeof...(texts), words);
}
