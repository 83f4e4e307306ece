#include "vexkhost/serialPort.h"

#include <unistd.h>

#include "host/serial/tHostPorts.h"

namespace vexkhost {
namespace {

// What the terminal passes on to its reader in between is not counted as unread, so nothing waits
// only when that was seen several times on end.
constexpr u32 kLooks = 20;
constexpr u32 kMicrosecondsBetweenLooks = 1000;

}  // namespace

bool connectSerialFile(char const* path) {
  return hostPorts.connectFile(path);
}

bool connectSerialTerminal(char* name, size_t size) {
  return hostPorts.connectTerminal(name, size);
}

void disconnectSerialPort() {
  hostPorts.disconnect();
}

bool drainSerialPort(u32 milliseconds) {
  u32 emptyLooks = 0;
  for (u32 waited = 0; emptyLooks < kLooks; ++waited) {
    emptyLooks = hostPorts.countUnread() == 0 ? emptyLooks + 1 : 0;
    if (emptyLooks == 0 && waited >= milliseconds) return false;
    usleep(kMicrosecondsBetweenLooks);
  }
  return true;
}

u64 getLostSerialBytes() {
  return hostPorts.getLostBytes();
}

void setSerialModemLines(u8 lines) {
  hostPorts.setModemLines(lines);
}

void setSerialAccessHook(SerialAccessHook* hook, void* context) {
  hostPorts.setHook(hook, context);
}

}  // namespace vexkhost
