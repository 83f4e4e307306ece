#pragma once

#include "oxdiagk/tAssertConfiguration.h"

namespace nOXDIAG100 {

// Reads one list of option words into an assertion configuration. Every word takes effect as it is
// read. What follows a switch or "--category" is decided by the next word alone.
class tAssertOptionReader {
 public:
  explicit tAssertOptionReader(tAssertConfiguration& configuration);

  void read(int argc, char** argv);

 private:
  void readWord(char const* word);
  bool readSwitchValue(char const* word);
  void readCategory(char const* word);
  void readOption(char const* word);
  void setPendingSwitch(bool isOn);
  void findCurrentSwitches();

  tAssertConfiguration& configuration;
  tAssertConfiguration::tConfigElem* current = nullptr;  // of the current category; null: none
  bool* pendingSwitch = nullptr;
  bool isCategoryPending = false;
};

}  // namespace nOXDIAG100
