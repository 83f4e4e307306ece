#include "slotbus/host/tSerialPort.h"

#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "vexkhost/serialPort.h"

namespace {

constexpr size_t kMaxNameSize = 128;
constexpr int kMillisecondsBetweenLooks = 50;

// Ctrl-C belongs to the watch, if there is one.
void waitForReturnKey(tEndWatch* watch) {
  std::fputs("Watch it from another terminal, then press Return here.\n", stderr);
  pollfd keys = {STDIN_FILENO, POLLIN, 0};
  while (poll(&keys, 1, kMillisecondsBetweenLooks) != 1) {
    if (watch != nullptr && watch->waitForEnd(std::chrono::milliseconds{0})) return;
  }
  for (int key = 0; key != '\n' && key != EOF;) key = std::getchar();
}

}  // namespace

tSerialPort::~tSerialPort() {
  if (isConnected) vexkhost::disconnectSerialPort();
}

bool tSerialPort::connect(std::optional<std::string> const& file) {
  isConnected = file ? connectFile(*file) : connectTerminal();
  return isConnected;
}

bool tSerialPort::connectFile(std::string const& file) {
  if (vexkhost::connectSerialFile(file.c_str())) return true;
  problem = "cannot open '" + file + "' for the serial port: " + std::strerror(errno);
  return false;
}

bool tSerialPort::connectTerminal() {
  std::array<char, kMaxNameSize> name = {};
  if (!vexkhost::connectSerialTerminal(name.data(), name.size())) {
    problem = std::string("cannot make a terminal for the serial port: ") + std::strerror(errno);
    return false;
  }
  terminal = name.data();
  return true;
}

void tSerialPort::announce() const {
  if (!terminal.empty()) std::fprintf(stderr, "serial port 1 is %s\n", terminal.c_str());
}

void tSerialPort::waitForWatcher(tEndWatch* watch) const {
  if (!terminal.empty() && isatty(STDIN_FILENO) != 0) waitForReturnKey(watch);
}

bool tSerialPort::finish(unsigned int patience) {
  if (!isConnected) return true;
  bool const isRead = vexkhost::drainSerialPort(patience);
  if (isRead && vexkhost::getLostSerialBytes() == 0) return true;
  problem = "not all that was sent to the serial port was taken";
  return false;
}
