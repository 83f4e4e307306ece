#include "ntos/irql.h"
#include "ntos/thread.h"

// Regions are counted and not watched.

namespace ntoshost {

constinit thread_local ThreadWords g_words = {0, 0, PASSIVE_LEVEL};

void enterWatchedRegion() {
}

void leaveWatchedRegion() {
}

}  // namespace ntoshost
