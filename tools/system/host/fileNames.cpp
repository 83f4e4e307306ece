#include "system/fileNames.h"

#include <fcntl.h>

std::vector<std::string> commandWords(int argc, char** argv) {
  return {argv + (argc > 0 ? 1 : 0), argv + argc};
}

int openForReading(std::string const& name) {
  return open(name.c_str(), O_RDONLY | O_CLOEXEC);
}

std::FILE* openForWriting(std::string const& name) {
  return std::fopen(name.c_str(), "wb");
}

bool lookAtFile(std::string const& name, struct stat& about) {
  return stat(name.c_str(), &about) == 0;
}
