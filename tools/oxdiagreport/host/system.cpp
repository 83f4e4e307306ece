#include "oxdiagreport/system.h"

#include <fcntl.h>
#include <unistd.h>

#include "ntoshost/strength.h"

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
