#pragma once

#include <pthread.h>

#include "host/serial/tUart16550.h"
#include "vexkhost/serialPort.h"

// The I/O ports of the host, with what answers at them. Every operation holds the lock, which the
// hook may take again.
class tHostPorts {
 public:
  constexpr tHostPorts() = default;

  u8 read(u16 port);
  void write(u16 port, u8 value);

  // As the functions of vexkhost/serialPort.h.
  bool connectFile(char const* path);
  bool connectTerminal(char* name, size_t size);
  void disconnect();
  u32 countUnread();
  u64 getLostBytes();
  void setModemLines(u8 lines);
  void setHook(vexkhost::SerialAccessHook* hook, void* context);

 private:
  class tGuard;

  bool isAnswering(u16 port) const;

  pthread_mutex_t lock = PTHREAD_RECURSIVE_MUTEX_INITIALIZER_NP;
  tUart16550 uart;
  tSerialLine line;
  vexkhost::SerialAccessHook* hook = nullptr;
  void* hookContext = nullptr;
};

extern tHostPorts hostPorts;
