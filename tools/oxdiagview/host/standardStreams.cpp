#include "oxdiagview/standardStreams.h"

#include <fcntl.h>
#include <unistd.h>

namespace oxdiagview {

// A stream that the caller has closed would become the next file that is opened, and what is meant
// for people would be written into that. In its place there is what can do nothing.
void prepareStandardStreams() {
  for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
    bool const isClosed = fcntl(stream, F_GETFD) == -1;
    if (isClosed) open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
  }
}

bool prepareColors() {
  return isatty(STDOUT_FILENO) == 1;
}

}  // namespace oxdiagview
