#include "oxdiagk/tAssertConfiguration.h"

#include "assert/assertSwitches.h"
#include "assert/tAssertOptionReader.h"
#include "config/options/savedSettings.h"
#include "config/options/tInquiryText.h"
#include "config/tConfigurationGuard.h"
#include "config/tInstancePlace.h"
#include "vexk/memory.h"
#include "vexk/placementNew.h"
#include "vexk/timerTimebase.h"

namespace nOXDIAG100 {
namespace {

using tConfigElem = tAssertConfiguration::tConfigElem;

constexpr tConfigElem kWithoutBreak = {.breakEnabled = false};
constexpr tConfigElem kWithoutExceptions = {.exceptionsEnabled = false};

struct tBuiltInCategory {
  char const* name;
  tConfigElem switches;
};

constexpr tBuiltInCategory kBuiltInCategories[] = {
    {kDefaultCategory, {}},
    {kWarningCategory, kWithoutBreak},
    {"statusWarning", kWithoutExceptions},
    {"statusFatal", kWithoutExceptions},
};

constinit tInstancePlace<tAssertConfiguration> instance;

// Counted up when the instance ends; at rest there is no category whose switch could be kept.
constinit u64 instanceLife = 1;

// Every program can read the counter, and knows to a few thousand counts when the module started;
// it does not know where the stack of that thread lies.
u64 chooseSecret() {
  constexpr u64 kMultiplier = 0x9E3779B97F4A7C15;
  u64 const counter = tTimerTimebaseEfficient::getCounterValue();
  return reinterpret_cast<u64>(&counter) * kMultiplier ^ counter;
}

}  // namespace

tAssertConfiguration& tAssertConfiguration::getInstance(char* /*category*/) {
  return instance.get();
}

void tAssertConfiguration::constructInstance() {
  new (instance.take()) tAssertConfiguration;
}

void tAssertConfiguration::destroyInstance() {
  storeRelease(instanceLife, instanceLife + 1);
  instance.destroy();
}

u64 const& tAssertConfiguration::getLife() {
  return instanceLife;
}

tAssertConfiguration::tAssertConfiguration()
    : categories(chooseSecret()), currentCategory(kDefaultCategory) {
  for (tBuiltInCategory const& category : kBuiltInCategories) {
    categories.add(category.name, category.switches);
  }
}

tAssertConfiguration::~tAssertConfiguration() {
  categories.removeCopies();
  currentCategory = kDefaultCategory;  // the name of the one before may be gone
  // Nobody sees the younger ones between here and the oldest.
  for (; savedConfigurations.size() > 1; savedConfigurations.pop_back()) {
    _memDelete(savedConfigurations.back().text);
  }
  popConfiguration();
}

bool const* tAssertConfiguration::findSwitch(char const* category, bool tConfigElem::*value) const {
  if (category == nullptr) return nullptr;
  auto const* const found = categories.find(category);
  return found == nullptr ? nullptr : &(found->value.*value);
}

bool tAssertConfiguration::isOn(char const* category, bool tConfigElem::*value) const {
  bool const* const found = findSwitch(category, value);
  return found != nullptr && load(*found);
}

void tAssertConfiguration::set(char const* category, bool tConfigElem::*value, bool isOn) {
  if (category == nullptr) return;
  auto* const found = categories.find(category);
  if (found != nullptr) store(found->value.*value, isOn);
}

void tAssertConfiguration::configure(int argc, char** argv) {
  tConfigurationGuard const guard(configurationLock);
  tAssertOptionReader(*this).read(argc, argv);
}

void tAssertConfiguration::configure() {
}

void tAssertConfiguration::inquire(char* buffer, unsigned int size, unsigned int* needed) {
  tConfigurationGuard const guard(configurationLock);
  tInquiryText text(buffer, size);
  for (auto* known = categories.first(); known != nullptr; known = categories.next(*known)) {
    text.append(" --category ").append(known->getName());
    for (tAssertSwitch const& entry : kAssertSwitches) {
      text.append(" ").append(entry.option).appendOnOff(load(known->value.*entry.value));
    }
  }
  text.finish(needed);
}

void tAssertConfiguration::pushConfiguration() {
  tConfigurationGuard const guard(configurationLock);
  if (!makeRoom(savedConfigurations)) return;
  char* const text = copySettings(*this, kMemLongLived);
  if (text != nullptr) savedConfigurations.push_back({currentCategory, text});
}

void tAssertConfiguration::popConfiguration() {
  tConfigurationGuard const guard(configurationLock);
  if (savedConfigurations.empty()) return;
  tSavedConfiguration const saved = savedConfigurations.back();
  savedConfigurations.pop_back();
  if (restoreSettings(*this, saved.text)) currentCategory = saved.category;
}

u32 tAssertConfiguration::countSavedConfigurations() {
  tConfigurationGuard const guard(configurationLock);
  return static_cast<u32>(savedConfigurations.size());
}

// The key that equals `category`, or null.
char const* tAssertConfiguration::findName(char const* category) const {
  auto const* const found = categories.find(category);
  return found == nullptr ? nullptr : found->getName();
}

// The key of the new category; null when memory is exhausted.
char const* tAssertConfiguration::addCategory(char const* category) {
  auto const* const made = categories.addCopy(category, tConfigElem());
  return made == nullptr ? nullptr : made->getName();
}

}  // namespace nOXDIAG100
