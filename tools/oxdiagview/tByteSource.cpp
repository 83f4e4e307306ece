#include "oxdiagview/tByteSource.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "system/fileNames.h"

namespace oxdiagview {
namespace {

constexpr size_t kPortion = size_t{256} << 10;
constexpr int kStandardInput = 0;
constexpr int kStandardOutput = 1;

std::filesystem::path pathOf(std::string const& name) {
  return std::u8string(name.begin(), name.end());
}

bool isSameFile(struct stat const& one, struct stat const& other) {
  return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

}  // namespace

tByteSource::tByteSource(std::string const& name) : name(name), portion(kPortion) {
  open();
}

void tByteSource::open() {
  position = 0;
  reason.clear();
  file = isStandard() ? kStandardInput : openForReading(name);
  if (file < 0) reason = std::strerror(errno);
  struct stat opened;
  bool const isFolder = file >= 0 && fstat(file, &opened) == 0 && S_ISDIR(opened.st_mode);
  if (isFolder) reason = std::strerror(EISDIR);
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
  if (isStandard() || !lookAtFile(name, now) || fstat(file, &opened) != 0) return false;
  bool const isShorter = S_ISREG(now.st_mode) && static_cast<uint64_t>(now.st_size) < position;
  return !isSameFile(now, opened) || isShorter;
}

// The file that replaced it may be gone again.
void tByteSource::reopen() {
  int const former = file;
  open();
  if (file < 0 && errno == ENOENT) {
    file = former;
    position = 0;
    reason.clear();
  } else {
    ::close(former);
  }
}

bool tByteSource::isFile() const {
  struct stat opened;
  return !isStandard() && fstat(file, &opened) == 0 && S_ISREG(opened.st_mode);
}

// Windows numbers no files here; there the names are compared.
bool tByteSource::isAlso(std::string const& path) const {
  struct stat from;
  struct stat to;
  bool const isThere = path.empty() ? fstat(kStandardOutput, &to) == 0 : lookAtFile(path, to);
  if (!isThere || fstat(file, &from) != 0) return false;
  if (S_ISREG(from.st_mode) && from.st_ino != 0) return isSameFile(from, to);
  std::error_code isNoFile;
  return std::filesystem::equivalent(pathOf(name), pathOf(path), isNoFile);
}

}  // namespace oxdiagview
