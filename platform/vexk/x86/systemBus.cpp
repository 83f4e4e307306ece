#include "common/systemBus.h"

#include "x86/tPortBus.h"

iBus* newSystemBus() {
  return new tPortBus;
}
