#include "host/serial/tHostPorts.h"

#include "vexk/iBus.h"

namespace {
constexpr u32 kSerialBase = 0x3F8;
}

constinit tHostPorts hostPorts;

class tHostPorts::tGuard {
 public:
  explicit tGuard(tHostPorts& ports) : ports(ports) { pthread_mutex_lock(&ports.lock); }
  ~tGuard() { pthread_mutex_unlock(&ports.lock); }
  tGuard(tGuard const&) = delete;
  tGuard& operator=(tGuard const&) = delete;

 private:
  tHostPorts& ports;
};

u8 tHostPorts::read(u16 port) {
  tGuard const guard(*this);
  if (hook != nullptr) hook(hookContext, {port, 0, false});
  if (!isAnswering(port)) return kBusNoAnswer;
  return uart.read(port - kSerialBase, line);
}

void tHostPorts::write(u16 port, u8 value) {
  tGuard const guard(*this);
  if (hook != nullptr) hook(hookContext, {port, value, true});
  if (isAnswering(port)) uart.write(port - kSerialBase, value, line);
}

bool tHostPorts::isAnswering(u16 port) const {
  return line.isConnected() && port >= kSerialBase &&
         port < kSerialBase + tUart16550::kRegisterCount;
}

bool tHostPorts::connectFile(char const* path) {
  tGuard const guard(*this);
  uart = tUart16550();
  return line.connectFile(path);
}

bool tHostPorts::connectTerminal(char* name, size_t size) {
  tGuard const guard(*this);
  uart = tUart16550();
  return line.connectTerminal(name, size);
}

void tHostPorts::disconnect() {
  tGuard const guard(*this);
  line.disconnect();
}

u32 tHostPorts::countUnread() {
  tGuard const guard(*this);
  return line.countUnread();
}

u64 tHostPorts::getLostBytes() {
  tGuard const guard(*this);
  return line.getLostBytes();
}

void tHostPorts::setModemLines(u8 lines) {
  tGuard const guard(*this);
  uart.setModemLines(lines);
}

void tHostPorts::setHook(vexkhost::SerialAccessHook* next, void* context) {
  tGuard const guard(*this);
  hook = next;
  hookContext = context;
}
