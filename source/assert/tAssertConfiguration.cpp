#include "oxdiagk/tAssertConfiguration.h"

#include "assert/assertSwitches.h"
#include "assert/tAssertOptionReader.h"
#include "config/savedSettings.h"
#include "config/tInquiryText.h"
#include "config/tInstancePlace.h"
#include "vexk/memory.h"

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

// By address: a category that options made may have the same name, when the built-in one could not
// be allocated.
bool isBuiltIn(char const* name) {
  for (tBuiltInCategory const& category : kBuiltInCategories) {
    if (name == category.name) return true;
  }
  return false;
}

char* copyName(char const* name) {
  size_t const size = __builtin_strlen(name) + 1;
  i32 status = 0;
  void* const copy = _memNewUsingCRT(size, kMemLongLived, status);
  if (copy != nullptr) __builtin_memcpy(copy, name, size);
  return static_cast<char*>(copy);
}

constinit tInstancePlace<tAssertConfiguration> instance;

}  // namespace

tAssertConfiguration& tAssertConfiguration::getInstance(char* /*category*/) {
  return instance.get();
}

void tAssertConfiguration::constructInstance() {
  new (instance.take()) tAssertConfiguration;
}

void tAssertConfiguration::destroyInstance() {
  instance.destroy();
}

tAssertConfiguration::tAssertConfiguration() : currentCategory(kDefaultCategory) {
  for (tBuiltInCategory const& category : kBuiltInCategories) {
    categories.add(category.name, category.switches);
  }
}

tAssertConfiguration::~tAssertConfiguration() {
  removeMadeCategories();
  // The names that they were about are gone.
  for (tSavedConfiguration& saved : savedConfigurations) saved.category = kDefaultCategory;
  while (!savedConfigurations.empty()) popConfiguration();
  // A saved configuration makes the categories that it names again.
  removeMadeCategories();
}

bool tAssertConfiguration::isOn(char const* category, bool tConfigElem::*value) const {
  if (category == nullptr) return false;
  auto const* const found = categories.find(category);
  return found != nullptr && load(found->value.*value);
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
  for (auto const* known = categories.first(); known != nullptr; known = known->nextByName) {
    text.append(" --category ").append(known->name);
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

// The key that equals `category`, or null.
char const* tAssertConfiguration::findName(char const* category) const {
  auto const* const found = categories.find(category);
  return found == nullptr ? nullptr : found->name;
}

// The key of the new category; null when memory is exhausted.
char const* tAssertConfiguration::addCategory(char const* category) {
  char* const name = copyName(category);
  if (name == nullptr) return nullptr;
  if (categories.add(name, tConfigElem()) != nullptr) return name;
  _memDelete(name);
  return nullptr;
}

void tAssertConfiguration::removeMadeCategories() {
  for (auto* next = categories.first(); next != nullptr;) {
    auto* const category = next;
    next = category->nextByName;
    char const* const name = category->name;
    if (isBuiltIn(name)) continue;
    categories.take(*category);
    _memDelete(const_cast<char*>(name));
  }
  currentCategory = kDefaultCategory;
}

}  // namespace nOXDIAG100
