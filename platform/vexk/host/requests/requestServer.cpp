#include "vexkhost/requestServer.h"

#include "host/requests/tRequestServer.h"

namespace vexkhost {

bool startRequestServer(char const* path) {
  return requestServer.start(path);
}

void stopRequestServer() {
  requestServer.stop();
}

}  // namespace vexkhost
