#include "assert/tAssertOptionReader.h"

#include "assert/assertSwitches.h"
#include "config/options/optionWord.h"

namespace nOXDIAG100 {

tAssertOptionReader::tAssertOptionReader(tAssertConfiguration& configuration)
    : configuration(configuration) {
  findCurrentSwitches();
}

void tAssertOptionReader::read(int argc, char** argv) {
  int const count = countWords(argc, argv);
  for (int index = 0; index < count; ++index) readWord(argv[index]);
  if (pendingSwitch != nullptr) setPendingSwitch(true);
}

void tAssertOptionReader::readWord(char const* word) {
  if (pendingSwitch != nullptr && readSwitchValue(word)) return;
  if (isCategoryPending) {
    readCategory(word);
  } else {
    readOption(word);
  }
}

// A word that is no value means "on" and is read once more.
bool tAssertOptionReader::readSwitchValue(char const* word) {
  tOnOff const value = readOnOff(word);
  setPendingSwitch(value != tOnOff::kOff);
  return value != tOnOff::kNeither;
}

void tAssertOptionReader::readCategory(char const* word) {
  isCategoryPending = false;
  if (isOption(word)) {
    configuration.currentCategory = kDefaultCategory;
    findCurrentSwitches();
    return;
  }
  char const* const known = configuration.findName(word);
  char const* const name = known != nullptr ? known : configuration.addCategory(word);
  if (name == nullptr) {
    current = nullptr;
    return;
  }
  configuration.currentCategory = name;
  findCurrentSwitches();
}

void tAssertOptionReader::readOption(char const* word) {
  isCategoryPending = isEqual(word, "--category");
  for (tAssertSwitch const& entry : kAssertSwitches) {
    if (isEqual(word, entry.option) && current != nullptr) pendingSwitch = &(current->*entry.value);
  }
}

void tAssertOptionReader::setPendingSwitch(bool isOn) {
  tAssertConfiguration::store(*pendingSwitch, isOn);
  pendingSwitch = nullptr;
}

// Once a category, not once an option: a name may be as long as the whole text, and every look-up
// reads all of it.
void tAssertOptionReader::findCurrentSwitches() {
  auto* const category = configuration.categories.find(configuration.currentCategory);
  current = category == nullptr ? nullptr : &category->value;
}

}  // namespace nOXDIAG100
