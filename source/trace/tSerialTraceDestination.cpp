#include "oxdiagk/tSerialTraceDestination.h"

#include "config/options/tInquiryText.h"
#include "trace/findOrMake.h"
#include "trace/serialRates.h"
#include "trace/tPollLimit.h"
#include "vexk/iBus.h"

namespace nOXDIAG100 {
namespace {

// The registers of COM1, by their I/O ports.
constexpr u16 kTransmitHolding = 0x3F8;  // the divisor's low byte while kDivisorAccess is set
constexpr u16 kLineControl = 0x3FB;
constexpr u16 kLineStatus = 0x3FD;
constexpr u16 kModemStatus = 0x3FE;

constexpr u8 kDivisorAccess = 0x80;       // line control
constexpr u8 kEightBitsNoParity = 0x03;   // line control: and one stop bit
constexpr u8 kTransmitterIsEmpty = 0x20;  // line status
constexpr u8 kClearToSend = 0x10;         // modem status, as the next two
constexpr u8 kDataSetReady = 0x20;
constexpr u8 kCarrierDetect = 0x80;
constexpr u8 kLineIsReady = kClearToSend | kDataSetReady | kCarrierDetect;

constexpr char kSettings[] = " --destination serial ";

constinit tSerialTraceDestination* instance = nullptr;

}  // namespace

tSerialTraceDestination* tSerialTraceDestination::getInstance() {
  return findOrMake(instance);
}

void tSerialTraceDestination::destroyInstance() {
  destroyAtEnd(instance);
}

tSerialTraceDestination::tSerialTraceDestination()
    : busType(kBusSystemIo),
      activeDivisor(kSerialDivisorOfMost),
      pendingDivisor(kSerialDivisorOfMost) {
}

tSerialTraceDestination::~tSerialTraceDestination() {
  leaveStream();
  tSerialTraceDestination::close();
}

iTraceDestination& tSerialTraceDestination::put(char const* text) {
  for (; text != nullptr && *text != 0; ++text) put(text, 1);
  return *this;
}

iTraceDestination& tSerialTraceDestination::put(char const* text, unsigned int length) {
  if (bus == nullptr || !waitForLine()) return *this;
  if (text == nullptr) return *this;
  for (unsigned int index = 0; index < length; ++index) send(static_cast<u8>(text[index]));
  return *this;
}

void tSerialTraceDestination::configure(int argc, char** const argv) {
  for (int index = 0; argv != nullptr && index < argc; ++index) setDivisor(argv[index]);
}

char* tSerialTraceDestination::inquire(char* buffer, unsigned int size, unsigned int* needed) {
  char const* const baud = getSerialBaud(activeDivisor);
  tInquiryText text(buffer, size);
  return text.append(kSettings).append(baud == nullptr ? kSettings : baud).finish(needed);
}

u32 tSerialTraceDestination::open() {
  tSerialTraceDestination::close();
  if (!openPort()) return 0;
  activeDivisor = pendingDivisor;
  setupSerialPort(activeDivisor, kEightBitsNoParity);
  return 1;
}

bool tSerialTraceDestination::openPort() {
  bus = busNewBusObject(busType);
  if (bus == nullptr) return false;
  handle = bus->openRange(0, 0, 0);
  if (handle == 0) busDeleteBusObject(bus);
  return handle != 0;
}

void tSerialTraceDestination::close() {
  if (bus == nullptr) return;
  bus->releaseHandle(&handle);
  busDeleteBusObject(bus);
}

char const* tSerialTraceDestination::getDescription() const {
  tInquiryText text(description, sizeof(description));
  text.append("Serial port with baud rate ").appendNumber(kSerialBaudMost / pendingDivisor);
  text.finish(nullptr);
  return description;
}

void tSerialTraceDestination::setupSerialPort(unsigned short divisor, unsigned char lineControl) {
  if (bus == nullptr) return;
  writeRegister(kLineControl, kDivisorAccess);
  writeRegister(kTransmitHolding, static_cast<u8>(divisor));
  writeRegister(kLineControl, lineControl);
}

void tSerialTraceDestination::setDivisor(char const* baud) {
  u16 const divisor = getSerialDivisor(baud);
  if (divisor != 0) pendingDivisor = divisor;
}

bool tSerialTraceDestination::waitForLine() {
  if (lineIsReady()) return true;
  tTimebaseResolution const resolution{tTimerTimebaseEfficient::getResolutionValue(),
                                       tTimerTimebaseEfficient::getResolutionTimeUnit()};
  tPollLimit limit(resolution, tTimerTimebaseEfficient::getCounterValue());
  while (!lineIsReady()) {
    if (limit.isReached(tTimerTimebaseEfficient::getCounterValue())) return false;
  }
  return true;
}

bool tSerialTraceDestination::lineIsReady() {
  return (readRegister(kModemStatus) & kLineIsReady) == kLineIsReady;
}

void tSerialTraceDestination::send(u8 value) {
  transmit(value);
  if (value == '\n') transmit('\r');
}

void tSerialTraceDestination::transmit(u8 value) {
  while ((readRegister(kLineStatus) & kTransmitterIsEmpty) == 0) {
  }
  writeRegister(kTransmitHolding, value);
}

u8 tSerialTraceDestination::readRegister(u16 port) {
  return bus->readByte(handle, port, kBusReadByte);
}

void tSerialTraceDestination::writeRegister(u16 port, u8 value) {
  bus->writeByte(handle, port, value, kBusWriteByte);
}

}  // namespace nOXDIAG100
