#include "oxdiagk/tContractSite.h"

#include "oxdiagk/tAssertConfiguration.h"

namespace nOXDIAG100 {
namespace {

using tConfigElem = tAssertConfiguration::tConfigElem;

// By kind.
constexpr bool tConfigElem::*kSwitches[] = {
    &tConfigElem::preconditionsEnabled,   &tConfigElem::postconditionsEnabled,
    &tConfigElem::classinvariantsEnabled, &tConfigElem::loopinvariantsEnabled,
    &tConfigElem::checksEnabled,          &tConfigElem::exceptionsEnabled,
};
static_assert(kSwitches[tContractSite::kException] == &tConfigElem::exceptionsEnabled);

}  // namespace

// Threads that find the switch at once store the same.
bool tContractSite::find(char const* category, tKind kind) {
  bool const* const found =
      tAssertConfiguration::getInstance().findSwitch(category, kSwitches[kind]);
  if (found == nullptr) return false;
  u64 const& current = tAssertConfiguration::getLife();
  storeRelaxed(isOn, found);
  storeRelaxed(currentLife, &current);
  storeRelease(life, loadRelaxed(current));
  return loadRelaxed(*found);
}

}  // namespace nOXDIAG100
