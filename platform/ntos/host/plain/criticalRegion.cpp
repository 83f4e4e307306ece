#include "ntos/thread.h"

// There are no APCs.

void KeEnterCriticalRegion() {
}

void KeLeaveCriticalRegion() {
}
