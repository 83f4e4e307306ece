#include "slotbus/host/tRackFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "slotbus/component/statusCodes.h"

using nSLOTBUS100::kMaxRackTextLength;

bool tRackFile::read() {
  int const file = open(name.c_str(), O_RDONLY | O_CLOEXEC);
  if (file < 0) return fail(std::strerror(errno));
  bool const isRead = readFrom(file);
  close(file);
  return isRead;
}

bool tRackFile::readFrom(int file) {
  char buffer[64 * 1024];
  for (;;) {
    ssize_t const count = ::read(file, buffer, sizeof(buffer));
    if (count == 0) return true;
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return fail(std::strerror(errno));
    text.append(buffer, static_cast<size_t>(count));
    if (text.size() > kMaxRackTextLength) return fail("it is larger than 1 MiB");
  }
}

bool tRackFile::fail(std::string const& reason) {
  text.clear();
  problem = "cannot read the rack file '" + name + "': " + reason;
  return false;
}
