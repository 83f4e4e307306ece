#pragma once

#include <stddef.h>

#include "ntos/types.h"

// The first serial port of the host: a model of a 16550 UART at the ports 0x3F8 to 0x3FF, behind
// the bus objects that busNewBusObject makes. It sends; it receives nothing and raises no
// interrupts. At first nothing is connected, and the port is absent: its registers read 0xFF, as
// all other ports do, and what is written is gone.
//
//     char name[64];
//     if (vexkhost::connectSerialTerminal(name, sizeof(name))) {
//       printf("watch the trace with: cat %s\n", name);
//     }
//
// Every connection replaces the one before, and resets the UART and the modem lines. All functions
// may be called on any thread.

namespace vexkhost {

// Connects the port to a file, which is created or emptied; bytes are in it as soon as they are
// sent. False, with errno set and nothing connected, when the file cannot be opened.
bool connectSerialFile(char const* path);

// Connects the port to a new pseudo terminal in raw mode and gives its name, which any number of
// programs may open, one after the other. Bytes that nobody reads yet wait in the terminal. When it
// is full the transmitter stays busy until somebody reads; a terminal that takes nothing for
// kSerialPatience has no reader, and what does not fit is lost from then on, until there is room
// again. False, with errno set and nothing connected, when there is no terminal or no room for its
// name.
bool connectSerialTerminal(char* name, size_t size);
constexpr u32 kSerialPatience = 1000;  // milliseconds

// Takes the connection away. What waits in a terminal is lost with it; see drainSerialPort.
void disconnectSerialPort();

// Waits until somebody has read what waits in the terminal, at most so long. True when nothing
// waits, as is always so of a file.
bool drainSerialPort(u32 milliseconds);

// Bytes that the connection could not take: no reader, or a full disk.
u64 getLostSerialBytes();

// The lines that the other side drives, as the upper four bits of the modem status register. A new
// connection sets all but the ring indicator.
constexpr u8 kSerialClearToSend = 0x10;
constexpr u8 kSerialDataSetReady = 0x20;
constexpr u8 kSerialRingIndicator = 0x40;
constexpr u8 kSerialCarrierDetect = 0x80;
void setSerialModemLines(u8 lines);

// One access to a port of the host, whatever is connected.
struct SerialAccess {
  u16 port;
  u8 value;  // as written; 0 for a read
  bool isWrite;
};

// Is called before each access takes effect, on the thread that makes it, while all others wait. It
// may use the functions here, so it can let a line become ready at the nth access.
using SerialAccessHook = void(void* context, SerialAccess const& access);

// Sets the hook; null takes it away. When this returns, the hook before is no longer running,
// unless it was the caller.
void setSerialAccessHook(SerialAccessHook* hook, void* context);

}  // namespace vexkhost
