#pragma once

#include "common/tAllPortsBus.h"

// The I/O ports of the host as a bus.
class tHostBus : public tAllPortsBus {
 public:
  u32 openRange(u64 base, u64 length, u32 flags) override;

 protected:
  void write(u16 port, u8 value) override;
  u8 read(u16 port) override;
};
