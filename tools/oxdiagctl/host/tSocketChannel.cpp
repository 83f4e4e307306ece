#include "oxdiagctl/host/tSocketChannel.h"

#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "oxdiagctl/tFailure.h"
#include "vexkhost/requestSocket.h"

using namespace vexkhost;

namespace {

// As a server's refusal reads behind "at PATH: ".
tFailure failureOf(u32 answer) {
  switch (answer) {
    case kRequestOtherUser:
      return {kExitDenied, "the program there serves its own user and root only"};
    case kRequestMemoryClosed:
      return {kExitDenied, "the program there may not look into this one's memory"};
    case kRequestTooManyCallers:
      return {kExitNotTaken, "the program there serves too many others; try again"};
    default:
      return {kExitNotTaken, "the program there speaks another language"};
  }
}

}  // namespace

char const* const kPlaceHelp =
    "The socket that the program listens at; by default\n"
    "oxdiag.socket in $XDG_RUNTIME_DIR, or in /tmp/oxdiag-UID";

std::unique_ptr<iRequestChannel> openRequestChannel(std::optional<std::string> const& place) {
  char path[kRequestPathSize];
  if (place) return std::make_unique<tSocketChannel>(*place);
  if (getRequestSocketPath(path)) return std::make_unique<tSocketChannel>(path);
  throw tFailure{kExitUsage, "the path in XDG_RUNTIME_DIR is too long"};
}

tSocketChannel::tSocketChannel(std::string socketPath) : path(std::move(socketPath)) {
  if (path.empty() || path.size() >= kRequestPathSize) {
    throw tFailure{kExitUsage, "the path of a socket has 1 to 107 bytes"};
  }
  try {
    open();
    letServerIn();
    greet();
  } catch (tFailure const&) {
    close(descriptor);
    throw;
  }
}

tSocketChannel::~tSocketChannel() {
  close(descriptor);
}

void tSocketChannel::open() {
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof(address.sun_path) - 1);
  descriptor = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
  if (descriptor < 0) fail(errno);
  if (connect(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof(address)) != 0) fail(errno);
}

// Some systems let nobody but chosen processes at a program's memory. Whoever listens is to be this
// user, or root, before he is chosen.
void tSocketChannel::letServerIn() {
  ucred server = {};
  socklen_t size = sizeof(server);
  if (getsockopt(descriptor, SOL_SOCKET, SO_PEERCRED, &server, &size) != 0) fail(errno);
  if (server.uid != geteuid() && server.uid != 0) {
    throw tFailure{kExitDenied,
                   "at " + path + ", another user's program listens; call it as that user"};
  }
  prctl(PR_SET_PTRACER, server.pid, 0, 0, 0);
}

void tSocketChannel::greet() {
  demandAccepted(receive<tRequestGreeting>().answer);
}

bool tSocketChannel::deliver(std::string_view dispatcher, void const* request) {
  tRequestMessage message = {};
  message.magic = kRequestMagic;
  message.nameLength = static_cast<u32>(dispatcher.size());
  message.request = reinterpret_cast<u64>(request);
  dispatcher.copy(message.name, sizeof(message.name));
  if (send(descriptor, &message, sizeof(message), MSG_NOSIGNAL) != sizeof(message)) fail(errno);
  tRequestReply const reply = receive<tRequestReply>();
  demandAccepted(reply.answer);
  return reply.status >= 0;
}

template <class tMessage>
tMessage tSocketChannel::receive() {
  tMessage message = {};
  ssize_t length = 0;
  do {
    length = recv(descriptor, &message, sizeof(message), 0);
  } while (length < 0 && errno == EINTR);
  if (length < 0) fail(errno);
  if (length == 0) throw tFailure{kExitNobody, "at " + path + ", the program has hung up"};
  if (length != sizeof(message) || message.magic != kRequestMagic) demandAccepted(~0u);
  return message;
}

void tSocketChannel::demandAccepted(unsigned answer) const {
  if (answer == kRequestAccepted) return;
  tFailure failure = failureOf(answer);
  failure.sentence.insert(0, "at " + path + ", ");
  throw failure;
}

void tSocketChannel::fail(int error) const {
  if (error == EACCES || error == EPERM) {
    throw tFailure{kExitDenied, "access to " + path + " is denied"};
  }
  if (error == ENOENT || error == ECONNREFUSED || error == ENOTDIR) {
    throw tFailure{kExitNobody, "nobody listens at " + path};
  }
  if (error == EPROTOTYPE || error == ENOTSOCK) demandAccepted(~0u);
  throw tFailure{kExitNobody, "at " + path + ": " + std::strerror(error)};
}
