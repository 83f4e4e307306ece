#pragma once

#include "host/serial/tSerialLine.h"

// The registers of a 16550, without reception, interrupts and loopback. A byte is on the line as
// soon as the line takes it, whatever the divisor says.
class tUart16550 {
 public:
  static constexpr u32 kRegisterCount = 8;

  constexpr tUart16550() = default;

  u8 read(u32 index, tSerialLine& line);
  void write(u32 index, u8 value, tSerialLine& line);

  // The upper four bits of the modem status; a change is told in the lower four until it is read.
  void setModemLines(u8 lines);

 private:
  bool isDivisorShown() const { return (lineControl & 0x80) != 0; }
  u8 readLineStatus(tSerialLine& line);
  u8 readModemStatus();

  u8 divisorLow = 1;
  u8 divisorHigh = 0;
  u8 interruptEnable = 0;
  u8 fifoControl = 0;
  u8 lineControl = 0;
  u8 modemControl = 0;
  u8 modemStatus = 0xB0;
  u8 scratch = 0;
  u8 holding = 0;
  bool isHolding = false;  // `holding` waits for the line
};
