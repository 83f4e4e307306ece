#include "oxdiagreport/system.h"

#include <fcntl.h>
#include <unistd.h>

#include "ntoshost/strength.h"

std::vector<std::string> commandWords(int argc, char** argv) {
  return {argv + (argc > 0 ? 1 : 0), argv + argc};
}

int openForReading(std::string const& name) {
  return open(name.c_str(), O_RDONLY | O_CLOEXEC);
}

int openStandardInput() {
  return STDIN_FILENO;
}

void prepareStandardOutput() {
}

std::string getExecutiveName() {
  return ntoshost::getStrength();
}
