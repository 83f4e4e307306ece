#pragma once

#include "oxdiagk/iTraceDestination.h"

class iBus;

namespace nOXDIAG100 {

// Sends trace text out of the first serial port, COM1, so that it survives when no debugger is
// attached and the machine may stop at any moment. The stream selects it by
//
//     trace.configure("--destination serial 9600");
//
// The port is a 16550 UART at 0x3F8, with 8 data bits, no parity and 1 stop bit. Every byte is
// polled out; interrupts, FIFO and modem control are left as they are. Nothing is sent unless the
// other side is ready, which it says by the modem lines CTS, DSR and DCD together.
//
// The rate is one option word, "115200" at first:
//
//     115200  57600  38400  19200  9600  4800  2400  2000  1800  1200
//
// A rate is chosen at any time and takes effect when the destination is opened next. inquire()
// tells the rate of the last open(), getDescription() the one chosen.
//
// IRQL: put may run wherever the platform's port access and timebase may. It allocates nothing and
// takes no lock, but it keeps the processor: it polls for a millisecond when the other side is not
// ready, and without limit for the UART to take each byte. getInstance, open, close and the
// destructor need PASSIVE_LEVEL.
//
// Thread safety: the bytes of threads that put at once mix, and nothing else happens. The other
// operations are called by one thread at a time, configure(), open() and close() while no thread is
// within put. Trace streams do so, however many use the port.
class OXDIAG_API tSerialTraceDestination : public iTraceDestination {
 public:
  // The instance that "--destination serial" selects, made by the first call and kept until the
  // module is unloaded. Null when memory is exhausted; a later call tries again. Any thread.
  static tSerialTraceDestination* getInstance();

  // Destroys that instance, if there is one. For the end of the module, after the trace stream's.
  // Leaves it as it is while a thread is within its put, after a wait of ten seconds; the event log
  // says so.
  static void destroyInstance();

  // A closed destination with the rate 115200. All such objects use the same port.
  tSerialTraceDestination();

  // Leaves the trace streams that write here, and releases the port as close() does.
  ~tSerialTraceDestination() override;

  tSerialTraceDestination(tSerialTraceDestination const&) = delete;
  tSerialTraceDestination& operator=(tSerialTraceDestination const&) = delete;

  // Sends the bytes of `text`, each by put(byte, 1), so the line may become ready in the middle.
  // Null counts as no text, here and below.
  iTraceDestination& put(char const* text) override;

  // Sends exactly `length` bytes, a NUL like any other, and a carriage return behind every line
  // feed. Waits once, 1 ms and a step of the timebase, for the line to be ready; if it is not,
  // everything is dropped. Then waits without limit until the UART takes each byte. Does nothing
  // while closed.
  iTraceDestination& put(char const* text, unsigned int length) override;

  // Chooses the rate by the last of the words that is one of the list above. Others, also null, are
  // ignored, and a null argv counts as no words.
  void configure(int argc, char** const argv) override;

  // " --destination serial 115200". The rates 2000 and 1800 have no word here; in its place stands
  // " --destination serial " again, which chooses no rate when it is read back.
  char* inquire(char* buffer, unsigned int size, unsigned int* needed) override;

  // Takes the bus of the system and programs the port with the rate chosen. Returns 0, and holds
  // nothing, when there is no bus or no memory for it; inquire() then still tells the former rate.
  // An open destination is closed first.
  u32 open() override;

  // Gives the bus back. The port keeps its settings.
  void close() override;

  // "Serial port with baud rate 9600": 115200 divided by the divisor chosen, which makes 1986 of
  // 2000. In a buffer of this object.
  char const* getDescription() const override;

  // Programs divisor and line control register. The divisor is 115200 divided by the rate; only its
  // low byte is written. Does nothing while closed.
  void setupSerialPort(unsigned short divisor, unsigned char lineControl);

  // Chooses the rate by one word of the list above; null and other words change nothing.
  void setDivisor(char const* baud);

 private:
  bool openPort();
  bool waitForLine();
  bool lineIsReady();
  void send(u8 value);
  void transmit(u8 value);
  u8 readRegister(u16 port);
  void writeRegister(u16 port, u8 value);

  u32 busType;
  iBus* bus = nullptr;  // null while closed
  u32 handle = 0;
  u16 activeDivisor;   // as programmed by the last open()
  u16 pendingDivisor;  // for the next one
  mutable char description[100] = {};
};

}  // namespace nOXDIAG100
