#include "common/systemBus.h"

// The system lets no program at its ports.
iBus* newSystemBus() {
  return nullptr;
}
