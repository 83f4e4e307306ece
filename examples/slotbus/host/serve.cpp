#include "slotbus/host/serve.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>

#include "vexkhost/requestServer.h"
#include "vexkhost/requestSocket.h"

namespace {

constexpr timespec kPause = {2, 0};

sigset_t endSignals() {
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, SIGINT);
  sigaddset(&set, SIGTERM);
  return set;
}

bool hasEndCome() {
  sigset_t const set = endSignals();
  return sigtimedwait(&set, nullptr, &kPause) >= 0;
}

void tellHowToReach(std::optional<std::string> const& socket) {
  char place[vexkhost::kRequestPathSize] = {};
  vexkhost::getRequestSocketPath(place);
  std::string const at = socket ? "--at " + *socket + " " : "";
  std::fprintf(stderr,
               "serving at %s until Ctrl-C; in another terminal:\n"
               "  oxdiagctl %strace                        how the trace is set\n"
               "  oxdiagctl %strace --timestamp on         changes it\n"
               "  oxdiagctl %strace --filter 'verb>=60'    shows the steps too\n",
               socket ? socket->c_str() : place, at.c_str(), at.c_str(), at.c_str());
}

}  // namespace

void holdEndSignals() {
  sigset_t const set = endSignals();
  sigprocmask(SIG_BLOCK, &set, nullptr);
}

std::optional<std::string> serve(tRackMachine& machine, std::optional<std::string> const& socket) {
  if (!vexkhost::startRequestServer(socket ? socket->c_str() : nullptr)) {
    return std::string("cannot serve: ") + std::strerror(errno);
  }
  std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
  std::fflush(stdout);
  tellHowToReach(socket);
  while (!hasEndCome()) machine.askNextDevice();
  vexkhost::stopRequestServer();
  return std::nullopt;
}
