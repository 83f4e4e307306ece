#include "common/platformVersion.h"

#include "vexkhost/platformVersion.h"

namespace {

constexpr tPlatformVersion kOwn = {kVexVersion, kVexOldestCompatible};

constinit tPlatformVersion platformVersion = kOwn;

}  // namespace

tPlatformVersion getPlatformVersion() {
  return platformVersion;
}

void vexkhost::setPlatformVersion(tSSVersion current, tSSVersion oldestCompatible) {
  platformVersion = {current, oldestCompatible};
}

void vexkhost::resetPlatformVersion() {
  platformVersion = kOwn;
}
