#include "oxdiagview/tByteSource.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace oxdiagview {
namespace {

constexpr size_t kPortion = size_t{256} << 10;
constexpr int kStandardInput = 0;

// Only Windows knows files that are no bytes.
#ifdef O_BINARY
constexpr int kAsBytes = O_RDONLY | O_BINARY;
#else
constexpr int kAsBytes = O_RDONLY | O_CLOEXEC;
#endif

}  // namespace

tByteSource::tByteSource(std::string const& name) : name(name), portion(kPortion) {
  open();
}

void tByteSource::open() {
  position = 0;
  reason.clear();
  file = isStandard() ? kStandardInput : ::open(name.c_str(), kAsBytes);
  if (file < 0) reason = std::strerror(errno);
}

void tByteSource::close() {
  if (file >= 0 && !isStandard()) ::close(file);
  file = -1;
}

std::string_view tByteSource::read() {
  while (!hasFailed()) {
    auto const count = ::read(file, portion.data(), kPortion);
    if (count >= 0) {
      position += static_cast<uint64_t>(count);
      return std::string_view(portion.data(), static_cast<size_t>(count));
    }
    if (errno != EINTR) reason = std::strerror(errno);
  }
  return {};
}

std::string tByteSource::getProblem() const {
  return "cannot read " + (isStandard() ? "standard input" : "'" + name + "'") + ": " + reason;
}

bool tByteSource::wasReplaced() const {
  struct stat now;
  struct stat opened;
  if (isStandard() || stat(name.c_str(), &now) != 0 || fstat(file, &opened) != 0) return false;
  bool const isSame = now.st_dev == opened.st_dev && now.st_ino == opened.st_ino;
  return !isSame || static_cast<uint64_t>(now.st_size) < position;
}

void tByteSource::reopen() {
  close();
  open();
}

}  // namespace oxdiagview
