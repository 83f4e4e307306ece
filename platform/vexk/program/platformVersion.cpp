#include "common/platformVersion.h"

tPlatformVersion getPlatformVersion() {
  return {kVexVersion, kVexOldestCompatible};
}
