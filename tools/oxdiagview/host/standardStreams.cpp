#include "oxdiagview/standardStreams.h"

#include <unistd.h>

namespace oxdiagview {

void prepareStandardStreams() {
}

bool prepareColors() {
  return isatty(STDOUT_FILENO) == 1;
}

}  // namespace oxdiagview
