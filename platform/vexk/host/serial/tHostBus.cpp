#include "host/serial/tHostBus.h"

#include "host/serial/tHostPorts.h"

void tHostBus::write(u16 port, u8 value) {
  hostPorts.write(port, value);
}

u8 tHostBus::read(u16 port) {
  return hostPorts.read(port);
}
