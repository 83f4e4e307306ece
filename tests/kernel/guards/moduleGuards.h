#pragma once

// What the modules that are loaded say about their guards.

#include "boot/tModuleImage.h"
#include "image/loadConfiguration.h"

// The load configuration of the module that has something at this address, or null.
inline tLoadConfiguration const* guardsAt(void const* inside) {
  return static_cast<tLoadConfiguration const*>(tModuleImage(inside).findLoadConfiguration());
}
