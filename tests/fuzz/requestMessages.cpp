// Messages to the request server that no caller of ours sends, from this program to itself; what
// they ask is the state of the library. Each line is an operation:
//
//     m NAME       sends a message with that name, S for the state's, and awaits the answer
//     q PLACE AT N writes a request in front of the next message: N bytes of answer at AT
//     r PLACE      where the next message's request lies; beyond the page is none
//     l N          the length of the next message's name
//     g N          changes the mark of the next message by N
//     z N          the next message has N bytes
//     c            hangs up
//
// Places are in a page, behind which nothing may be touched.

#include <poll.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <memory>

#include "oxdiagk/stateRequest.h"
#include "oxdiagk/tunnelRequest.h"
#include "support/fuzzing.h"
#include "support/tScript.h"
#include "vexkhost/requestServer.h"
#include "vexkhost/requestSocket.h"

namespace {

using namespace vexkhost;
using nOXDIAG100::kStateName;
using nOXDIAG100::kTunnelName;
using nOXDIAG100::tStateAnswer;
using nOXDIAG100::tStateRequest;

constexpr size_t kPage = 4096;
constexpr size_t kMostMessage = 300;
constexpr int kPatience = 10'000;  // milliseconds

// Served as long as the program runs, in a folder of its own.
class tServer {
 public:
  tServer() {
    if (mkdtemp(folder) == nullptr) fail("there is a folder", folder);
    path = std::string(folder) + "/socket";
    if (!startRequestServer(path.c_str())) fail("there is a server", path);
  }
  ~tServer() {
    stopRequestServer();
    rmdir(folder);
  }
  tServer(tServer const&) = delete;
  tServer& operator=(tServer const&) = delete;

  std::string path;

 private:
  char folder[32] = "/tmp/oxdiag-fuzz-XXXXXX";
};

class tConnection {
 public:
  explicit tConnection(std::string const& path)
      : descriptor(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0)) {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof(address.sun_path) - 1);
    bool const isThere =
        TEMP_FAILURE_RETRY(
            connect(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof(address))) == 0;
    demand(isThere && receive<tRequestGreeting>().answer == kRequestAccepted,
           "a caller is accepted", [] { return "it is not"; });
  }
  ~tConnection() { close(descriptor); }
  tConnection(tConnection const&) = delete;
  tConnection& operator=(tConnection const&) = delete;

  tRequestReply ask(std::string const& message) const {
    ssize_t const sent =
        TEMP_FAILURE_RETRY(send(descriptor, message.data(), message.size(), MSG_NOSIGNAL));
    demand(sent == static_cast<ssize_t>(message.size()), "a message is taken",
           [&] { return std::to_string(sent); });
    return receive<tRequestReply>();
  }

 private:
  template <class tMessage>
  tMessage receive() const {
    tMessage message = {};
    pollfd watched = {descriptor, POLLIN, 0};
    // The fuzzer's alarm interrupts who waits.
    bool const isThere = TEMP_FAILURE_RETRY(poll(&watched, 1, kPatience)) == 1 &&
                         recv(descriptor, &message, sizeof(message), 0) == sizeof(message);
    demand(isThere && message.magic == kRequestMagic, "there is an answer", [] { return "none"; });
    return message;
  }

  int const descriptor;
};

char* page() {
  static char* const mapped = [] {
    void* const at =
        mmap(nullptr, 2 * kPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (at == MAP_FAILED) fail("the page is mapped", "a failure");
    mprotect(static_cast<char*>(at) + kPage, kPage, PROT_NONE);
    return static_cast<char*>(at);
  }();
  return mapped;
}

// What the next message is, and what is to become of it.
class tCall {
 public:
  void apply(tScript& script, char operation) {
    switch (operation) {
      case 'q':
        return putRequest(script);
      case 'r':
        place = script.number() % (2 * kPage) / sizeof(tStateRequest) * sizeof(tStateRequest);
        return;
      case 'l':
        length = script.number();
        hasLength = true;
        return;
      case 'g':
        magic += script.number();
        return;
      default:
        size = 1 + script.number() % kMostMessage;
    }
  }

  std::string messageFor(std::string const& name) {
    tRequestMessage message = {};
    message.magic = magic;
    if (!hasLength) length = static_cast<u32>(name.size());
    message.nameLength = length;
    message.request = reinterpret_cast<u64>(page()) + place;
    name.copy(message.name, sizeof(message.name));
    std::string const read(message.name, std::min<size_t>(length, sizeof(message.name)));
    isState = read == kStateName && length <= sizeof(message.name);
    if (read == kTunnelName) message.name[0] = 'x';  // that has a target of its own
    std::string bytes(reinterpret_cast<char const*>(&message), sizeof(message));
    bytes.resize(size);
    return bytes;
  }

  bool isGood() const {
    return size == sizeof(tRequestMessage) && magic == kRequestMagic && length != 0 &&
           length <= kRequestNameSize;
  }
  bool isServed() const { return isGood() && isState; }

  std::string memory = std::string(kPage, '\0');
  size_t place = 0;

 private:
  void putRequest(tScript& script) {
    size_t const at = script.number() % kPage / sizeof(tStateRequest) * sizeof(tStateRequest);
    u64 const address = reinterpret_cast<u64>(page()) + script.number() % (2 * kPage);
    tStateRequest const request = {address, script.number(), 0};
    memory.replace(at, sizeof(request), reinterpret_cast<char const*>(&request), sizeof(request));
  }

  u32 magic = kRequestMagic;
  u32 length = 0;
  size_t size = sizeof(tRequestMessage);
  bool hasLength = false;
  bool isState = false;
};

// Memory is as before but for the answer; its size is there if the rest is.
void demandMemory(tCall const& call) {
  tStateRequest request = {};
  if (call.isServed() && call.place < kPage) {
    std::memcpy(&request, call.memory.data() + call.place, sizeof(request));
  }
  size_t const at = request.address - reinterpret_cast<u64>(page());
  size_t const written = std::min<size_t>(request.size, sizeof(tStateAnswer));
  std::string now(page(), kPage);
  u32 size = 0;
  if (at < kPage && at + sizeof(size) <= kPage) std::memcpy(&size, page() + at, sizeof(size));
  bool const isTold = at < kPage && at + written <= kPage && written >= sizeof(size);
  demand(!isTold || size == sizeof(tStateAnswer), "the state is told",
         [&] { return std::to_string(size); });
  std::string wanted = call.memory;
  if (at < kPage) wanted.replace(at, std::min(written, kPage - at), now, at, written);
  demandEqual(now, wanted, "only the answer is written");
}

void demandAnswer(tRequestReply const& reply, tCall const& call) {
  u32 const wanted = call.isGood() ? kRequestAccepted : kRequestMalformed;
  demand(reply.answer == wanted, "a message is answered for what it is",
         [&] { return std::to_string(reply.answer); });
  demand((reply.status >= 0) == (call.isServed() || !call.isGood()), "a served request is no error",
         [&] { return std::to_string(reply.status); });
}

class tCaller {
 public:
  void apply(tScript& script) {
    char const operation = script.operation("mqrlgzc");
    if (operation == 'm') return send(script.text() == "S" ? kStateName : script.text());
    if (operation == 'c') return connection.reset();
    call.apply(script, operation);
  }

 private:
  // What is malformed is the last thing that is answered.
  void send(std::string const& name) {
    static tServer const server;
    if (!connection) connection = std::make_unique<tConnection>(server.path);
    std::memcpy(page(), call.memory.data(), kPage);
    demandAnswer(connection->ask(call.messageFor(name)), call);
    demandMemory(call);
    if (!call.isGood()) connection.reset();
    call = tCall();
  }

  std::unique_ptr<tConnection> connection;
  tCall call;
};

}  // namespace

void fuzzInput(std::string const& input) {
  tCaller caller;
  for (tScript script(input); script.next();) caller.apply(script);
}
