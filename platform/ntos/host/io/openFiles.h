#pragma once

#include "io/deviceTable.h"

// An open device.
struct FILE_OBJECT {
  FILE_OBJECT* newer;
  DEVICE_OBJECT* device;  // that was opened; requests go to the top of its stack
};

namespace ntoshost {

// Stops the program unless the file is open. `call` is what it is used for.
void requireOpen(FILE_OBJECT const* file, char const* call);

u64 countFiles();
void visitFiles(void (*visit)(FILE_OBJECT const& file));

}  // namespace ntoshost
