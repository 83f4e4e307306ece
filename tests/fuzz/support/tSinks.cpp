#include "support/tSinks.h"

#include "ntoshost/debugPrint.h"
#include "oxdiagk/tFileTraceDestination.h"
#include "oxdiagk/tSerialTraceDestination.h"
#include "oxdiagk/tVEXTraceDestination.h"
#include "vexkhost/serialPort.h"

namespace {

using nOXDIAG100::iTraceDestination;
using nOXDIAG100::tFileTraceDestination;
using nOXDIAG100::tSerialTraceDestination;
using nOXDIAG100::tVEXTraceDestination;

constexpr u16 kTransmitHolding = 0x3F8;
constexpr u16 kLineControl = 0x3FB;
constexpr u8 kDivisorAccess = 0x80;

}  // namespace

tSinks::tSinks(tArrivals& arrivals) : arrivals(arrivals) {
  renew();
  ntoshost::setDebugPrintSink(&keepPrint, this);
  auto const hook = [](void* context, vexkhost::SerialAccess const& access) {
    tSinks& sinks = *static_cast<tSinks*>(context);
    if (!access.isWrite) return;
    if (access.port == kLineControl) sinks.isDivisorAccess = (access.value & kDivisorAccess) != 0;
    bool const isSent = access.port == kTransmitHolding && !sinks.isDivisorAccess;
    if (isSent) sinks.keepByte(static_cast<char>(access.value));
  };
  vexkhost::setSerialAccessHook(hook, this);
}

tSinks::~tSinks() {
  vexkhost::setSerialAccessHook(nullptr, nullptr);
  ntoshost::setDebugPrintSink(nullptr, nullptr);
  renew();
}

// Built at once, so that no input is the first that asks for them.
void tSinks::renew() {
  tSerialTraceDestination::destroyInstance();
  tFileTraceDestination::destroyInstance();
  tSerialTraceDestination::getInstance();
  tFileTraceDestination::getInstance();
}

iTraceDestination& tSinks::debugger() const {
  return tVEXTraceDestination::getInstance();
}

iTraceDestination& tSinks::serial() const {
  return *tSerialTraceDestination::getInstance();
}

void tSinks::keepPrint(void* context, char const* text, size_t length) {
  tSinks const& sinks = *static_cast<tSinks*>(context);
  sinks.arrivals.push_back({&sinks.debugger(), std::string(text, length)});
}

// Pieces are not seen on a line of bytes.
void tSinks::keepByte(char byte) {
  if (arrivals.empty() || arrivals.back().place != &serial()) arrivals.push_back({&serial(), ""});
  arrivals.back().text += byte;
}
