#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include "vexkhost/requestSocket.h"

namespace vexkhost {

bool getRequestSocketPath(char (&path)[kRequestPathSize]) {
  char const* const folder = getenv("XDG_RUNTIME_DIR");
  bool const hasFolder = folder != nullptr && folder[0] == '/';
  int const length = hasFolder ? snprintf(path, sizeof(path), "%s/oxdiag.socket", folder)
                               : snprintf(path, sizeof(path), "/tmp/oxdiag-%u/oxdiag.socket",
                                          static_cast<unsigned>(geteuid()));
  return static_cast<size_t>(length) < sizeof(path);
}

}  // namespace vexkhost
