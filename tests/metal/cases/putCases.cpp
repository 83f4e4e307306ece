// What goes out of the port.

#include "cases/cases.h"
#include "machine/commandLine.h"
#include "machine/report.h"
#include "machine/uart.h"
#include "oxdiagk/tSerialTraceDestination.h"

using nOXDIAG100::tSerialTraceDestination;

namespace {
constexpr u32 kByteCount = 256;
constexpr u32 kManyTimes = 1000;
}  // namespace

void put(int argc, char** argv) {
  char empty[] = "";
  char* const text = argc == 0 ? empty : argv[0];
  tSerialTraceDestination destination;
  destination.open();
  u32 const length = bytesOf(text);
  mark(1);
  expect(&destination.put(text, length) == &destination, "put answers the destination");
  mark(2);
}

void putText(int argc, char** argv) {
  char empty[] = "";
  char* const text = argc == 0 ? empty : argv[0];
  tSerialTraceDestination destination;
  destination.open();
  bytesOf(text);
  mark(1);
  expect(&destination.put(text) == &destination, "put answers the destination");
  mark(2);
}

void putEveryByte(int, char**) {
  char text[kByteCount];
  for (u32 i = 0; i < kByteCount; ++i) text[i] = static_cast<char>(i);
  tSerialTraceDestination destination;
  destination.open();
  mark(1);
  destination.put(text, kByteCount);
  mark(2);
}

void closed(int, char**) {
  tSerialTraceDestination destination;
  mark(1);
  destination.put("x", 1).put("x");
  destination.close();
  mark(2);
  destination.open();
  destination.close();
  mark(3);
  destination.put("x", 1).put("x");
  destination.close();
  mark(4);
}

void instance(int, char**) {
  tSerialTraceDestination* const destination = tSerialTraceDestination::getInstance();
  expect(destination != nullptr, "there is an instance");
  expect(tSerialTraceDestination::getInstance() == destination, "there is one instance");
  mark(1);
  expect(destination->open() == 1, "open succeeds");
  destination->put("x", 1);
  mark(2);
  tSerialTraceDestination::destroyInstance();
  mark(3);
}

void manyTimes(int, char**) {
  tSerialTraceDestination destination;
  for (u32 i = 0; i < kManyTimes; ++i) {
    if (destination.open() != 1) break;
    destination.put("x", 1);
    destination.close();
  }
}

void putAll(int, char** argv) {
  tSerialTraceDestination destination;
  destination.open();
  u32 const length = bytesOf(argv[0]);
  mark(1);
  destination.put(argv[0], length);
  mark(2);
  while ((readPort(kUartLineStatus) & kLineStatusTransmitterEmpty) == 0) {
  }
  mark(3);
}
