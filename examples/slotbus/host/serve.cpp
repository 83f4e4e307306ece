#include "slotbus/host/serve.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "slotbus/host/toolPlace.h"
#include "slotbus/host/traceFile.h"
#include "vexkhost/requestServer.h"
#include "vexkhost/requestSocket.h"

namespace {

constexpr std::chrono::seconds kPause{2};

void explainHowToReach(std::optional<std::string> const& socket) {
  char place[vexkhost::kRequestPathSize] = {};
  vexkhost::getRequestSocketPath(place);
  std::string const control = findTool("oxdiagctl") + (socket ? " --at " + *socket : "");
  std::fprintf(stderr,
               "serving at %s until Ctrl-C; in another terminal:\n"
               "  %s trace                        how the trace is set\n"
               "  %s trace --timestamp on         changes it\n"
               "  %s trace --filter 'verb>=60'    shows the steps too\n",
               socket ? socket->c_str() : place, control.c_str(), control.c_str(), control.c_str());
}

bool reportFileProblem() {
  auto const problem = findTraceFileProblem();
  if (problem) std::fprintf(stderr, "slotbus_demo: %s.\n", problem->c_str());
  return problem.has_value();
}

}  // namespace

std::optional<std::string> serve(tRackMachine& machine, tServing& serving,
                                 std::optional<std::string> const& socket) {
  if (!vexkhost::startRequestServer(socket ? socket->c_str() : nullptr)) {
    return std::string("cannot serve: ") + std::strerror(errno);
  }
  std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
  std::fflush(stdout);
  explainHowToReach(socket);
  serving.serialPort.announce();
  bool isReported = reportFileProblem();
  while (!serving.watch.waitForEnd(kPause)) {
    machine.askNextDevice();
    isReported = isReported || reportFileProblem();
  }
  vexkhost::stopRequestServer();
  return std::nullopt;
}
