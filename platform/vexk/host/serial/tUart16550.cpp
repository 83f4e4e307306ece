#include "host/serial/tUart16550.h"

namespace {

enum tRegister : u32 {
  kData = 0,             // received data, transmit holding; divisor low
  kInterruptEnable = 1,  // divisor high
  kInterruptIdentification = 2,
  kFifoControl = 2,
  kLineControl = 3,
  kModemControl = 4,
  kLineStatus = 5,
  kModemStatus = 6,
  kScratch = 7,
};

constexpr u8 kInterruptEnableBits = 0x0F;
constexpr u8 kModemControlBits = 0x1F;

constexpr u8 kFifoEnable = 0x01;   // FIFO control
constexpr u8 kNoInterrupt = 0x01;  // interrupt identification, as the next
constexpr u8 kFifosAreEnabled = 0xC0;
constexpr u8 kTransmitterIsEmpty = 0x60;  // line status: holding register and shift register

constexpr u8 kModemLines = 0xF0;
constexpr u8 kRingIndicator = 0x40;
constexpr u32 kChangeShift = 4;  // from a line to the bit that tells its change

}  // namespace

u8 tUart16550::read(u32 index, tSerialLine& line) {
  switch (index) {
    case kData:
      return isDivisorShown() ? divisorLow : 0;
    case kInterruptEnable:
      return isDivisorShown() ? divisorHigh : interruptEnable;
    case kInterruptIdentification:
      return (fifoControl & kFifoEnable) != 0 ? kFifosAreEnabled | kNoInterrupt : kNoInterrupt;
    case kLineControl:
      return lineControl;
    case kModemControl:
      return modemControl;
    case kLineStatus:
      return readLineStatus(line);
    case kModemStatus:
      return readModemStatus();
    default:
      return scratch;
  }
}

void tUart16550::write(u32 index, u8 value, tSerialLine& line) {
  switch (index) {
    case kData:
      if (isDivisorShown()) {
        divisorLow = value;
      } else {
        // A byte that still waits is overwritten: the program did not look at the line status.
        holding = value;
        isHolding = !line.take(value);
      }
      break;
    case kInterruptEnable:
      if (isDivisorShown()) {
        divisorHigh = value;
      } else {
        interruptEnable = value & kInterruptEnableBits;
      }
      break;
    case kFifoControl:
      fifoControl = value;
      break;
    case kLineControl:
      lineControl = value;
      break;
    case kModemControl:
      modemControl = value & kModemControlBits;
      break;
    case kScratch:
      scratch = value;
      break;
    default:
      break;
  }
}

void tUart16550::setModemLines(u8 lines) {
  u8 const next = lines & kModemLines;
  u8 const before = modemStatus & kModemLines;
  u8 changed = next ^ before;
  // Of the ring indicator only the end of the ring is told.
  if ((next & kRingIndicator) != 0) changed &= static_cast<u8>(~kRingIndicator);
  modemStatus = static_cast<u8>(next | (modemStatus & ~kModemLines) | changed >> kChangeShift);
}

u8 tUart16550::readLineStatus(tSerialLine& line) {
  if (isHolding) isHolding = !line.take(holding);
  return isHolding ? 0 : kTransmitterIsEmpty;
}

u8 tUart16550::readModemStatus() {
  u8 const status = modemStatus;
  modemStatus &= kModemLines;
  return status;
}
