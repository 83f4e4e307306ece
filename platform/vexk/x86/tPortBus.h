#pragma once

#include "common/tAllPortsBus.h"

// The I/O port space of the processor, by its `in` and `out` instructions, which need the privilege
// of a kernel.
class tPortBus : public tAllPortsBus {
 protected:
  void write(u16 port, u8 value) override;
  u8 read(u16 port) override;
};
