#pragma once

// The version of the platform that runs.

#include "vexk/version.h"

struct tPlatformVersion {
  tSSVersion current;
  tSSVersion oldestCompatible;
};

tPlatformVersion getPlatformVersion();
