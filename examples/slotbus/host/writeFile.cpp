#include "slotbus/host/writeFile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

bool writeFile(std::string const& name, void const* bytes, size_t size, std::string& problem) {
  std::FILE* const file = std::fopen(name.c_str(), "wb");
  bool isWritten = file != nullptr && std::fwrite(bytes, 1, size, file) == size;
  int reason = errno;
  if (file != nullptr && std::fclose(file) != 0) {
    if (isWritten) reason = errno;
    isWritten = false;
  }
  if (!isWritten) problem = "cannot write '" + name + "': " + std::strerror(reason);
  return isWritten;
}
