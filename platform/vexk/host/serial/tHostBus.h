#pragma once

#include "common/tAllPortsBus.h"

// The I/O ports of the host as a bus.
class tHostBus : public tAllPortsBus {
 protected:
  void write(u16 port, u8 value) override;
  u8 read(u16 port) override;
};
