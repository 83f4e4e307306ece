#include "host/serial/tHostBus.h"

#include "host/serial/tHostPorts.h"
#include "ntoshost/faults.h"

u32 tHostBus::openRange(u64 base, u64 length, u32 flags) {
  if (ntoshost::injectFault(ntoshost::kFaultBus)) return 0;
  return tAllPortsBus::openRange(base, length, flags);
}

void tHostBus::write(u16 port, u8 value) {
  hostPorts.write(port, value);
}

u8 tHostBus::read(u16 port) {
  return hostPorts.read(port);
}
