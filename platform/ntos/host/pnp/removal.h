#pragma once

namespace ntoshost {

// A handle was closed: removes the devices that are gone and waited for that.
void removeWhatWaited();

}  // namespace ntoshost
