#include "requests/tConnection.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>

using namespace vexkhost;

namespace {

constexpr int kPatience = 20000;  // milliseconds

}  // namespace

tConnection::tConnection(std::string const& path)
    : descriptor(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0)) {
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof(address.sun_path) - 1);
  if (connect(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof(address)) != 0) close();
}

tConnection::~tConnection() {
  close();
}

void tConnection::close() {
  if (descriptor >= 0) ::close(descriptor);
  descriptor = -1;
}

template <class tMessage>
bool tConnection::await(tMessage& message) const {
  pollfd watched = {descriptor, POLLIN, 0};
  if (descriptor < 0 || poll(&watched, 1, kPatience) != 1) return false;
  ssize_t const length = recv(descriptor, &message, sizeof(message), 0);
  return length == sizeof(message) && message.magic == kRequestMagic;
}

int tConnection::awaitGreeting() {
  tRequestGreeting greeting = {};
  return await(greeting) ? static_cast<int>(greeting.answer) : kNothing;
}

bool tConnection::isHungUpOn() const {
  pollfd watched = {descriptor, POLLIN, 0};
  char byte;
  return poll(&watched, 1, kPatience) == 1 && recv(descriptor, &byte, 1, 0) <= 0;
}

bool tConnection::send(void const* bytes, size_t size) const {
  return ::send(descriptor, bytes, size, MSG_NOSIGNAL) == static_cast<ssize_t>(size);
}

bool tConnection::send(std::string const& name, void const* request) const {
  tRequestMessage const message = makeMessage(name, request);
  return send(&message, sizeof(message));
}

int tConnection::awaitReply(i32& status) {
  tRequestReply reply = {};
  if (!await(reply)) return kNothing;
  status = reply.status;
  return static_cast<int>(reply.answer);
}

int tConnection::awaitReply() {
  i32 status = 0;
  return awaitReply(status);
}

int tConnection::call(std::string const& name, void const* request, i32& status) {
  int const greeting = awaitGreeting();
  if (greeting != kRequestAccepted) return greeting;
  return send(name, request) ? awaitReply(status) : kNothing;
}

int tConnection::call(std::string const& name, void const* request) {
  i32 status = 0;
  return call(name, request, status);
}

tRequestMessage makeMessage(std::string const& name, void const* request) {
  tRequestMessage message = {};
  message.magic = kRequestMagic;
  message.nameLength = static_cast<u32>(name.size());
  message.request = reinterpret_cast<u64>(request);
  name.copy(message.name, sizeof(message.name));
  return message;
}
