#pragma once

// Programmed I/O: single bytes read from and written to the ports of a bus.
//
//     iBus* bus = busNewBusObject(kBusSystemIo);
//     if (bus == nullptr) return false;
//     u32 handle = bus->openRange(0, 0, 0);
//     if (handle != 0) {
//       bus->writeByte(handle, 0x3F8, 'x', kBusWriteByte);
//       bus->releaseHandle(&handle);
//     }
//     busDeleteBusObject(bus);

#include "compiler/types.h"
#include "vexk/api.h"
#include "vexk/memory.h"

// The kinds of bus.
constexpr u32 kBusSystemIo = 0;  // the I/O port space of the system

// The access words: how wide an access is, and its direction.
constexpr u32 kBusWriteByte = 0x40000000;
constexpr u32 kBusReadByte = 0xC0000000;

// What is read from a port at which nothing answers.
constexpr u8 kBusNoAnswer = 0xFF;

// A bus whose ports can be accessed. Opening and releasing run at PASSIVE_LEVEL; single accesses at
// any IRQL, without waiting and without allocating. Accesses are not locked against each other.
class VEX_API iBus {
 public:
  VEX_MODULE_MEMORY

  virtual ~iBus() = 0;

  // Opens a range of ports and returns its handle, or 0 when that fails. `base` and `length` of 0
  // stand for all ports of the bus, which may be the only range that it knows. `flags` is 0.
  virtual u32 openRange(u64 base, u64 length, u32 flags) = 0;

  // Releases the range behind *handle and sets *handle to 0. Null and 0 are ignored.
  virtual void releaseHandle(u32* handle) = 0;

  // Writes one byte to `port`, an absolute port address. `access` is kBusWriteByte; with any other
  // word, with a handle of 0 and with a port that the bus does not have nothing is written.
  virtual void writeByte(u32 handle, u64 port, u8 value, u32 access) = 0;

  // Reads one byte from `port`. `access` is kBusReadByte; with any other word, with a handle
  // of 0 and with a port that the bus does not have the answer is kBusNoAnswer.
  virtual u8 readByte(u32 handle, u64 port, u32 access) = 0;
};

// Makes a bus object of a kind; null when the kind is unknown or memory is exhausted. The caller
// owns it and gives it back with busDeleteBusObject. PASSIVE_LEVEL.
VEX_API iBus* busNewBusObject(u32 busType);

// Destroys a bus object and sets `bus` to null. Null is ignored. PASSIVE_LEVEL.
VEX_API void busDeleteBusObject(iBus*& bus);

// Makes bus objects in place of the platform: a simulated device, or a recording test. Returns null
// when it cannot.
using tBusFactory = iBus*(u32 busType);

// From now on busNewBusObject asks `factory`, for every kind of bus; null restores the platform's
// own buses. Objects are destroyed by busDeleteBusObject whoever made them: they come from the
// class's own operator new, or their class has a destroying one. PASSIVE_LEVEL; not locked.
VEX_API void busSetFactory(tBusFactory* factory);
