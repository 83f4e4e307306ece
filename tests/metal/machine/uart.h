#pragma once

// The UART of the emulated PC as the tests handle it themselves, beside the destination.

#include "machine/ports.h"

constexpr u16 kUartData = 0x3F8;
constexpr u16 kUartModemControl = 0x3FC;
constexpr u16 kUartLineStatus = 0x3FD;
constexpr u16 kUartScratch = 0x3FF;

constexpr u8 kLineStatusTransmitterEmpty = 0x40;

// Writes `number` to the UART's scratch register, where it does nothing but stand in the emulator's
// log: what follows belongs to the section of that number.
inline void mark(u8 number) {
  writePort(kUartScratch, number);
}

// Sets the modem control register. In loopback (0x10) the UART's own outputs are its modem lines:
// 1 gives DSR, 2 CTS, 4 the ring indicator and 8 DCD.
inline void setModemControl(u8 value) {
  writePort(kUartModemControl, value);
}
