// What the destination does to the port's settings.

#include "cases/cases.h"
#include "machine/commandLine.h"
#include "machine/report.h"
#include "machine/uart.h"
#include "oxdiagk/tSerialTraceDestination.h"

using nOXDIAG100::tSerialTraceDestination;

void rate(int argc, char** argv) {
  {
    tSerialTraceDestination destination;
    mark(1);
    destination.configure(argc, argv);
    mark(2);
    expect(destination.open() == 1, "open succeeds");
    mark(3);
    destination.close();
    mark(4);
  }
  mark(5);
}

void divisor(int, char** argv) {
  tSerialTraceDestination destination;
  destination.setDivisor(argv[0]);
  destination.setDivisor(nullptr);
  mark(1);
  expect(destination.open() == 1, "open succeeds");
  mark(2);
}

void reopen(int argc, char** argv) {
  tSerialTraceDestination destination;
  destination.open();
  mark(1);
  destination.configure(argc, argv);
  mark(2);
  destination.close();
  mark(3);
  expect(destination.open() == 1, "open succeeds again");
  mark(4);
}

void setup(int, char** argv) {
  u16 const divisor = static_cast<u16>(numberOf(argv[0]));
  u8 const lineControl = static_cast<u8>(numberOf(argv[1]));
  tSerialTraceDestination destination;
  mark(1);
  destination.setupSerialPort(divisor, lineControl);
  mark(2);
  destination.open();
  mark(3);
  destination.setupSerialPort(divisor, lineControl);
  mark(4);
}
