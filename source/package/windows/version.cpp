#include "oxdiagk/version.h"

#include "build/version.h"
#include "qelmk/mergeStatus.h"
#include "vexk/debug.h"

namespace nOXDIAG100 {
namespace {

constexpr tSSVersion kOldestCompatible(1, 0, 0, tSSVersion::kPhaseReleased, 7, 0);

struct tRangeText {
  char oldest[tSSVersion::kMaxTextSize];
  char newest[tSSVersion::kMaxTextSize];

  tRangeText(tSSVersion from, tSSVersion to) {
    from.toString(oldest);
    to.toString(newest);
  }
};

void report(i32 status, tRangeText const& wanted, tRangeText const& installed,
            char const* component) {
  int const code = static_cast<int>(status);
  if (component != nullptr) {
    ssprintf(
        "[oxdiagk] version check failed with status = %d. Component '%s' desires the range "
        "%s - %s however the installed range is %s - %s\n",
        code, component, wanted.oldest, wanted.newest, installed.oldest, installed.newest);
  } else {
    ssprintf(
        "[oxdiagk] version check failed with status = %d. The calling component desires the range "
        "%s - %s however the installed range is %s - %s\n",
        code, wanted.oldest, wanted.newest, installed.oldest, installed.newest);
  }
}

}  // namespace

tSSVersion getCurrentVersion(i32& /*status*/) {
  return tSSVersion(kPackedVersion);
}

tSSVersion getOldestCompatibleVersion(i32& /*status*/) {
  return kOldestCompatible;
}

void compareVersion(tSSVersion const& newestWanted, tSSVersion const& oldestWanted, i32& status,
                    char const* component) {
  if (status < 0) return;
  tSSVersion const current(kPackedVersion);
  i32 const result = tSSVersion::check(newestWanted, oldestWanted, current, kOldestCompatible);
  nQELM100::mergeStatus(status, result);
  if (status < 0)
    report(status, tRangeText(oldestWanted, newestWanted), tRangeText(kOldestCompatible, current),
           component);
}

}  // namespace nOXDIAG100
