#include "host/serial/tSerialLine.h"

#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <time.h>
#include <unistd.h>

#include "ntoshost/faults.h"
#include "vexkhost/serialPort.h"

namespace {

constexpr mode_t kFileMode = 0666;

u64 readMilliseconds() {
  timespec now;
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<u64>(now.tv_sec) * 1000 + static_cast<u64>(now.tv_nsec) / 1000000;
}

// Bytes shall arrive as they were sent, and not be echoed.
bool makeRaw(int terminal) {
  termios settings;
  if (tcgetattr(terminal, &settings) != 0) return false;
  cfmakeraw(&settings);
  return tcsetattr(terminal, TCSANOW, &settings) == 0;
}

bool isRefused() {
  if (!ntoshost::injectFault(ntoshost::kFaultSerialLine)) return false;
  errno = EMFILE;
  return true;
}

void closeKeepingError(int& descriptor) {
  int const error = errno;
  if (descriptor >= 0) close(descriptor);
  descriptor = -1;
  errno = error;
}

}  // namespace

bool tSerialLine::connectFile(char const* path) {
  disconnect();
  if (isRefused()) return false;
  output = open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, kFileMode);
  return isConnected();
}

bool tSerialLine::connectTerminal(char* name, size_t size) {
  disconnect();
  if (isRefused()) return false;
  output = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  if (isConnected() && !prepareTerminal(name, size)) disconnect();
  return isConnected();
}

bool tSerialLine::prepareTerminal(char* name, size_t size) {
  if (grantpt(output) != 0 || unlockpt(output) != 0) return false;
  errno = ptsname_r(output, name, size);
  if (errno != 0) return false;
  terminal = open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
  return terminal >= 0 && makeRaw(terminal);
}

void tSerialLine::disconnect() {
  closeKeepingError(output);
  closeKeepingError(terminal);
  lostBytes = 0;
}

bool tSerialLine::take(u8 value) {
  ssize_t written;
  do {
    written = write(output, &value, 1);
  } while (written < 0 && errno == EINTR);
  if (written == 1) {
    busySince = 0;
    return true;
  }
  if (written < 0 && errno == EAGAIN && hasPatience()) return false;
  ++lostBytes;
  return true;
}

bool tSerialLine::hasPatience() {
  u64 const now = readMilliseconds();
  if (busySince == 0) busySince = now;
  return now - busySince < vexkhost::kSerialPatience;
}

u32 tSerialLine::countUnread() const {
  int count = 0;
  if (terminal >= 0) ioctl(terminal, FIONREAD, &count);
  return static_cast<u32>(count);
}
