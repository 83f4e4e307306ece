// oxdiagctl where something listens that is no request server, or one in trouble.

#include <sys/socket.h>
#include <sys/un.h>

#include <functional>
#include <thread>

#include "slotbus/demoTest.h"
#include "vexkhost/requestSocket.h"

using namespace vexkhost;

namespace {

// Listens, and does with the first caller what it is told to do.
class tStrangeServer {
 public:
  tStrangeServer(std::string const& path, int type, std::function<void(int)> const& treat)
      : listener(socket(AF_UNIX, type | SOCK_CLOEXEC, 0)) {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof(address.sun_path) - 1);
    EXPECT_EQ(bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof(address)), 0);
    EXPECT_EQ(listen(listener, 1), 0);
    thread = std::thread([this, treat] {
      int const caller = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
      if (caller < 0) return;
      treat(caller);
      close(caller);
    });
  }
  ~tStrangeServer() {
    shutdown(listener, SHUT_RDWR);
    thread.join();
    close(listener);
  }
  tStrangeServer(tStrangeServer const&) = delete;
  tStrangeServer& operator=(tStrangeServer const&) = delete;

 private:
  int listener;
  std::thread thread;
};

template <class tMessage>
void sendTo(int caller, tMessage const& message) {
  EXPECT_EQ(send(caller, &message, sizeof(message), MSG_NOSIGNAL), ssize_t{sizeof(message)});
}

void greet(int caller, u32 answer) {
  sendTo(caller, tRequestGreeting{kRequestMagic, answer});
}

tRequestMessage receiveFrom(int caller) {
  tRequestMessage message = {};
  EXPECT_EQ(recv(caller, &message, sizeof(message), 0), ssize_t{sizeof(message)});
  return message;
}

class StrangeServers : public tDemoTest {
 protected:
  void expectFailure(std::function<void(int)> const& treat, int exitCode,
                     std::string const& sentence, int type = SOCK_SEQPACKET) const {
    std::string const path = pathOf("socket");
    std::filesystem::remove(path);
    tStrangeServer const server(path, type, treat);
    tRun const run = runProgram({kControl, "--at", path, "list"});
    EXPECT_EQ(run.errors, "oxdiagctl: at " + path + ", " + sentence + ".\n");
    EXPECT_EQ(run.exitCode, exitCode);
    EXPECT_EQ(run.output, "");
  }
};

constexpr char kOtherLanguage[] = "the program there speaks another language";
constexpr char kHasHungUp[] = "the program has hung up";

}  // namespace

TEST_F(StrangeServers, OneThatHangsUpAtOnce) {
  expectFailure([](int) {}, 2, kHasHungUp);
}

TEST_F(StrangeServers, OneThatHangsUpInTheMiddle) {
  expectFailure(
      [](int caller) {
        greet(caller, kRequestAccepted);
        receiveFrom(caller);
      },
      2, kHasHungUp);
}

TEST_F(StrangeServers, OneOfAnotherLanguage) {
  expectFailure(
      [](int caller) {
        sendTo(caller, tRequestGreeting{kRequestMagic ^ 1, 0});
      },
      1, kOtherLanguage);
  expectFailure([](int caller) { sendTo(caller, u32{kRequestMagic}); }, 1, kOtherLanguage);
  expectFailure([](int caller) { greet(caller, 99); }, 1, kOtherLanguage);
}

TEST_F(StrangeServers, OneOfAnotherKindOfSocket) {
  expectFailure([](int) {}, 1, kOtherLanguage, SOCK_STREAM);
}

TEST_F(StrangeServers, OneThatRefuses) {
  expectFailure([](int caller) { greet(caller, kRequestOtherUser); }, 3,
                "the program there serves its own user and root only");
  expectFailure([](int caller) { greet(caller, kRequestTooManyCallers); }, 1,
                "the program there serves too many others; try again");
  expectFailure(
      [](int caller) {
        greet(caller, kRequestAccepted);
        receiveFrom(caller);
        sendTo(caller, tRequestReply{kRequestMagic, kRequestMemoryClosed, 0});
      },
      3, "the program there may not look into this one's memory");
}

TEST_F(StrangeServers, OneWithoutTheLibrary) {
  expectFailure(
      [](int caller) {
        greet(caller, kRequestAccepted);
        tRequestMessage const message = receiveFrom(caller);
        EXPECT_EQ(std::string(message.name, message.nameLength), "nOXDIAG100://nConfigTunnel");
        sendTo(caller, tRequestReply{kRequestMagic, kRequestAccepted, -50709});
      },
      2, "no diagnostics library is running");
}

TEST_F(StrangeServers, OneThatGivesNoHandles) {
  tStrangeServer const server(pathOf("handles"), SOCK_SEQPACKET, [](int caller) {
    greet(caller, kRequestAccepted);
    receiveFrom(caller);
    sendTo(caller, tRequestReply{kRequestMagic, kRequestAccepted, 0});
  });
  tRun const run = runProgram({kControl, "--at", pathOf("handles"), "trace"});
  EXPECT_EQ(run.errors, "oxdiagctl: the target does not let its trace be set.\n");
  EXPECT_EQ(run.exitCode, 1);
}
