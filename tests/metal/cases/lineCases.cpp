// When the modem lines let text out, and how long it waits for them.

#include "cases/cases.h"
#include "machine/commandLine.h"
#include "machine/report.h"
#include "machine/timer.h"
#include "machine/uart.h"
#include "oxdiagk/tSerialTraceDestination.h"
#include "vexk/timerTimebase.h"

using nOXDIAG100::tSerialTraceDestination;

namespace {

constinit u8 laterControl = 0;

void setLaterControl() {
  setModemControl(laterControl);
}

// The time base's elapsed time and the interval timer's ticks over one operation.
template <typename tOperation>
void reportDuration(tOperation operation) {
  expect(tTimerTimebaseEfficient::getResolutionTimeUnit() == kTimeNanosecond,
         "the time base counts in nanoseconds");
  u64 const resolution = tTimerTimebaseEfficient::getResolutionValue();
  tTickCount const ticks;
  u64 const start = tTimerTimebaseEfficient::getCounterValue();
  mark(1);
  operation();
  mark(2);
  u64 const end = tTimerTimebaseEfficient::getCounterValue();
  u32 const elapsedTicks = ticks.get();
  sayNumber("nanoseconds", (end - start) * resolution);
  sayNumber("ticks", elapsedTicks);
}

}  // namespace

void lines(int, char** argv) {
  setModemControl(static_cast<u8>(numberOf(argv[0])));
  tSerialTraceDestination destination;
  destination.open();
  mark(1);
  destination.put("x", 1);
  mark(2);
  readPort(kUartLineStatus);
  readPort(kUartData);
  mark(3);
}

void limit(int, char**) {
  tSerialTraceDestination destination;
  destination.open();
  reportDuration([&destination] { destination.put("x", 1); });
}

void limitOfText(int, char** argv) {
  tSerialTraceDestination destination;
  destination.open();
  bytesOf(argv[0]);
  reportDuration([&] { destination.put(argv[0]); });
}

void linesChange(int, char** argv) {
  setModemControl(static_cast<u8>(numberOf(argv[0])));
  laterControl = static_cast<u8>(numberOf(argv[1]));
  tSerialTraceDestination destination;
  destination.open();
  afterMicroseconds(numberOf(argv[2]), &setLaterControl);
  mark(1);
  destination.put("x", 1);
  mark(2);
}
