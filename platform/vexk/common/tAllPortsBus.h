#pragma once

#include "vexk/iBus.h"

// What the buses of all targets share: one handle that stands for all 65536 I/O ports, and the
// check of every access. A target adds the access itself.
class tAllPortsBus : public iBus {
 public:
  u32 openRange(u64 base, u64 length, u32 flags) override {
    return base == 0 && length == 0 && flags == 0 ? kAllPorts : 0;
  }

  void releaseHandle(u32* handle) final {
    if (handle != nullptr) *handle = 0;
  }

  void writeByte(u32 handle, u64 port, u8 value, u32 access) final {
    if (isPort(handle, port) && access == kBusWriteByte) write(static_cast<u16>(port), value);
  }

  u8 readByte(u32 handle, u64 port, u32 access) final {
    if (!isPort(handle, port) || access != kBusReadByte) return kBusNoAnswer;
    return read(static_cast<u16>(port));
  }

 protected:
  virtual void write(u16 port, u8 value) = 0;
  virtual u8 read(u16 port) = 0;

 private:
  static constexpr u32 kAllPorts = 1;  // the handle
  static constexpr u64 kPortLast = 0xFFFF;

  static bool isPort(u32 handle, u64 port) { return handle == kAllPorts && port <= kPortLast; }
};
