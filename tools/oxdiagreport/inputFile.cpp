#include "oxdiagreport/inputFile.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "oxdiagreport/system.h"
#include "system/fileNames.h"

namespace {

constexpr size_t kMaxSize = size_t{16} << 20;

std::optional<std::string> readAll(int file, std::string& reason) {
  std::string bytes;
  char buffer[64 * 1024];
  for (;;) {
    ssize_t const count = read(file, buffer, sizeof(buffer));
    if (count == 0) return bytes;
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) reason = std::strerror(errno);
    if (count < 0) return std::nullopt;
    bytes.append(buffer, static_cast<size_t>(count));
    if (bytes.size() > kMaxSize) reason = "it is larger than 16 MiB";
    if (bytes.size() > kMaxSize) return std::nullopt;
  }
}

}  // namespace

std::optional<std::string> readInput(std::string const& name, std::string& problem) {
  std::string reason;
  std::optional<std::string> bytes;
  bool const isStandard = name == "-";
  int const file = isStandard ? openStandardInput() : openForReading(name);
  if (file < 0) {
    reason = std::strerror(errno);
  } else {
    bytes = readAll(file, reason);
  }
  if (file >= 0 && !isStandard) close(file);
  if (!bytes) {
    problem = "cannot read " + (isStandard ? "standard input" : "'" + name + "'") + ": " + reason;
  }
  return bytes;
}
