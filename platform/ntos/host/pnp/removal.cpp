#include "pnp/removal.h"

namespace ntoshost {

void removeWhatWaited() {
}

}  // namespace ntoshost
