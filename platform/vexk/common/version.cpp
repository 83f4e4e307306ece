#include "vexk/version.h"

#include "platformVersion.h"

i32 vexCompareVersion(tSSVersion const& builtAgainst, tSSVersion const& oldestWanted) {
  tPlatformVersion const platform = getPlatformVersion();
  return tSSVersion::check(builtAgainst, oldestWanted, platform.current, platform.oldestCompatible);
}
