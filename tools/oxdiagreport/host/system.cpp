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

// A descriptor that nobody opened would be given to the next file or socket, and what is printed
// would go there. One that is open for reading takes nothing.
void prepareStandardStreams() {
  for (int const standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    bool const isOpen = fcntl(standard, F_GETFD) >= 0;
    if (!isOpen) open("/dev/null", standard == STDIN_FILENO ? O_WRONLY : O_RDONLY);
  }
}

std::string getExecutiveName() {
  return ntoshost::getStrength();
}
