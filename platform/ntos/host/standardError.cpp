#include "standardError.h"

#include <errno.h>
#include <unistd.h>

namespace ntoshost {

void writeStandardError(char const* text, size_t length) {
  while (length > 0) {
    ssize_t const written = write(STDERR_FILENO, text, length);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return;
    text += written;
    length -= static_cast<size_t>(written);
  }
}

}  // namespace ntoshost
