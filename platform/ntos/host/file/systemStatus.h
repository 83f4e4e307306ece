#pragma once

#include "ntos/status.h"

namespace ntoshost {

// The status that says what `errno` says now.
NTSTATUS systemStatus();

}  // namespace ntoshost
