#pragma once

#include <stddef.h>

#include "ntos/types.h"

// What a serial port is connected to: a file, a pseudo terminal, or nothing.
class tSerialLine {
 public:
  constexpr tSerialLine() = default;

  // As vexkhost::connectSerialFile, connectSerialTerminal and disconnectSerialPort.
  bool connectFile(char const* path);
  bool connectTerminal(char* name, size_t size);
  void disconnect();

  bool isConnected() const { return output >= 0; }

  // Takes a byte. False when it cannot do so now and shall be asked again; a byte that nobody will
  // ever take counts as lost, and as taken.
  bool take(u8 value);

  u64 getLostBytes() const { return lostBytes; }

  // Bytes that wait for a reader, as far as the terminal knows.
  u32 countUnread() const;

 private:
  static constexpr int kNone = -1;

  bool prepareTerminal(char* name, size_t size);
  bool hasPatience();

  int output = kNone;
  int terminal = kNone;  // kept open: a terminal that nobody has open refuses to be written
  u64 busySince = 0;     // milliseconds; 0 while bytes are taken
  u64 lostBytes = 0;
};
