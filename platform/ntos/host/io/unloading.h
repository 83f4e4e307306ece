#pragma once

namespace ntoshost {

// A handle was closed: unloads the drivers that were stopped and waited for that.
void unloadWhatWaited();

}  // namespace ntoshost
