#include "common/systemBus.h"

#include "host/serial/tHostBus.h"

iBus* newSystemBus() {
  return new tHostBus;
}
