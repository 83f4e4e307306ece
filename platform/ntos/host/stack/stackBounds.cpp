#include "stack/stackBounds.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "stack/kernelStack.h"

namespace ntoshost {
namespace {

constinit thread_local StackBounds g_bounds = {};

// The C library's open, read and close are not used: a sanitizer's versions of them allocate.
class MapsFile {
 public:
  MapsFile() : m_file(syscall(SYS_openat, AT_FDCWD, "/proc/self/maps", O_RDONLY | O_CLOEXEC)) {}
  ~MapsFile() {
    if (m_file >= 0) syscall(SYS_close, m_file);
  }
  MapsFile(MapsFile const&) = delete;
  MapsFile& operator=(MapsFile const&) = delete;

  // The next character, or -1 at the end.
  int get() {
    if (m_at == m_end) refill();
    return m_at < m_end ? m_buffer[m_at++] : -1;
  }

 private:
  void refill() {
    do {
      m_end = m_file < 0 ? 0 : syscall(SYS_read, m_file, m_buffer, sizeof(m_buffer));
    } while (m_end < 0 && errno == EINTR);
    m_at = 0;
    if (m_end < 0) m_end = 0;
  }

  long m_file;
  long m_at = 0;
  long m_end = 0;
  char m_buffer[1024];
};

int hexDigit(int character) {
  if (character >= '0' && character <= '9') return character - '0';
  if (character >= 'a' && character <= 'f') return character - 'a' + 10;
  return -1;
}

// Reads a number and the character behind it.
u64 readHex(MapsFile& maps) {
  u64 value = 0;
  for (int digit = hexDigit(maps.get()); digit >= 0; digit = hexDigit(maps.get())) {
    value = value << 4 | static_cast<u64>(digit);
  }
  return value;
}

// A line reads "low-high ..."; at the end of the file the mapping is empty.
StackBounds readMapping(MapsFile& maps) {
  StackBounds bounds;
  bounds.low = readHex(maps);
  bounds.high = readHex(maps);
  int character;
  do {
    character = maps.get();
  } while (character >= 0 && character != '\n');
  return bounds;
}

StackBounds searchMaps(u64 address) {
  int const errorNumber = errno;
  MapsFile maps;
  StackBounds bounds = readMapping(maps);
  while (bounds.high != 0 && !bounds.contains(address)) bounds = readMapping(maps);
  errno = errorNumber;
  return bounds;
}

}  // namespace

StackBounds findStackBounds(u64 address) {
  StackBounds const kernelStack = kernelStackAround(address);
  if (kernelStack.high != 0) return kernelStack;
  if (!g_bounds.contains(address)) g_bounds = searchMaps(address);
  return g_bounds;
}

}  // namespace ntoshost
