// Callers of the request server that are other processes, and not always sensible ones.

#include <signal.h>
#include <sys/mman.h>
#include <sys/prctl.h>

#include <memory>
#include <thread>
#include <utility>
#include <vector>

#include "ntoshost/faults.h"
#include "requests/requestTest.h"
#include "vexk/statusCodes.h"

using namespace vexkhost;

namespace {

class RequestCallers : public RequestTest {
 protected:
  RequestCallers() { startServer(); }
};

}  // namespace

TEST_F(RequestCallers, ARequestIsServedInTheCallersMemory) {
  EXPECT_EQ(callOnce(), 0);
  EXPECT_EQ(doubler->served, 1);
}

TEST_F(RequestCallers, OneConnectionCarriesManyRequests) {
  tChild child([this] {
    tConnection connection(path);
    tDoubling doubling;
    if (connection.awaitGreeting() != kRequestAccepted) return 1;
    for (doubling.number = 0; doubling.number < 500; ++doubling.number) {
      bool const isServed = connection.send(kDoubler, &doubling) &&
                            connection.awaitReply() == kRequestAccepted &&
                            doubling.result == 2 * doubling.number;
      if (!isServed) return 2;
    }
    return 0;
  });
  EXPECT_EQ(child.await(), 0);
  EXPECT_EQ(doubler->served, 500);
}

TEST_F(RequestCallers, TheStatusOfTheDeliveryIsTold) {
  tChild child([this] {
    tConnection connection(path);
    i32 status = 0;
    int const answer = connection.call("nTEST://nNobody", nullptr, status);
    if (answer != kRequestAccepted || status != kStatusNoDispatcher) return 1;
    std::string const longest(kRequestNameSize, 'x');
    if (!connection.send(longest, nullptr)) return 2;
    if (connection.awaitReply(status) != kRequestAccepted) return 3;
    return status == kStatusNoDispatcher ? 0 : 4;
  });
  EXPECT_EQ(child.await(), 0);
}

TEST_F(RequestCallers, ABadAddressIsTheDispatchersToSee) {
  tChild child([this] { return tConnection(path).call(kDoubler, reinterpret_cast<void*>(16)); });
  EXPECT_EQ(child.await(), kRequestAccepted);
  EXPECT_EQ(doubler->served + doubler->unwritten, 0);
}

TEST_F(RequestCallers, SeveralAreServedAtOnce) {
  constexpr int kCallers = 8;
  auto const call = [this](u32 number) {
    tDoubling doubling = {number, 0, 1};
    bool const isServed = tConnection(path).call(kDoubler, &doubling) == kRequestAccepted;
    return isServed && doubling.result == 2 * number ? 0 : 1;
  };
  std::vector<std::unique_ptr<tChild>> children;
  for (u32 number = 0; number < kCallers; ++number) {
    children.push_back(std::make_unique<tChild>([&] { return call(number); }));
  }
  doubler->gate.awaitArrivals(kCallers);
  doubler->gate.open();
  for (auto const& child : children) EXPECT_EQ(child->await(), 0);
  EXPECT_EQ(doubler->served, kCallers);
}

TEST_F(RequestCallers, OneThatDiesInTheMiddleHoldsUpNobody) {
  tChild child([this] {
    tDoubling doubling = {1, 0, 1};
    return tConnection(path).call(kDoubler, &doubling);
  });
  doubler->gate.awaitArrivals(1);
  EXPECT_EQ(callOnce(), 0);
  kill(child.pid, SIGKILL);
  child.await();
  doubler->gate.open();
  EXPECT_EQ(callOnce(), 0);
  stopRequestServer();
  EXPECT_EQ(doubler->served, 2);
  EXPECT_EQ(doubler->unwritten, 1);
}

TEST_F(RequestCallers, OneThatDiesUnawaitedIsGone) {
  tChild child([this] {
    tDoubling doubling = {1, 0, 1};
    return tConnection(path).call(kDoubler, &doubling);
  });
  doubler->gate.awaitArrivals(1);
  kill(child.pid, SIGKILL);
  siginfo_t end;
  waitid(P_PID, static_cast<id_t>(child.pid), &end, WEXITED | WNOWAIT);
  doubler->gate.open();
  stopRequestServer();
  EXPECT_EQ(doubler->unwritten, 1);
}

TEST_F(RequestCallers, OneThatUnmapsItsBufferIsAnsweredAllTheSame) {
  tSignal const isUnmapped;
  tSignal const mayUnmap;
  tChild child([&] {
    size_t const size = 4096;
    void* const page =
        mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    *static_cast<tDoubling*>(page) = {1, 0, 1};
    tConnection connection(path);
    if (connection.awaitGreeting() != kRequestAccepted) return 1;
    if (!connection.send(kDoubler, page) || !mayUnmap.await()) return 2;
    munmap(page, size);
    if (!isUnmapped.give()) return 3;
    return connection.awaitReply() == kRequestAccepted ? 0 : 4;
  });
  doubler->gate.awaitArrivals(1);
  EXPECT_TRUE(mayUnmap.give());
  EXPECT_TRUE(isUnmapped.await());
  doubler->gate.open();
  EXPECT_EQ(child.await(), 0);
  EXPECT_EQ(doubler->unwritten, 1);
}

TEST_F(RequestCallers, OneWithoutNameOrWithAWrongNumberIsToldAndHungUpOn) {
  tRequestMessage messages[] = {makeMessage(kDoubler, nullptr), makeMessage("", nullptr),
                                makeMessage(kDoubler, nullptr), makeMessage(kDoubler, nullptr)};
  messages[0].magic ^= 1;
  messages[2].nameLength = kRequestNameSize + 1;
  messages[3].nameLength = ~0u;
  for (tRequestMessage const& message : messages) {
    tConnection connection(path);
    EXPECT_EQ(connection.awaitGreeting(), kRequestAccepted);
    EXPECT_TRUE(connection.send(&message, sizeof(message)));
    i32 status = 7;
    EXPECT_EQ(connection.awaitReply(status), kRequestMalformed);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(connection.isHungUpOn());
  }
}

TEST_F(RequestCallers, MessagesOfAnotherSizeAreToldAndHungUpOn) {
  tRequestMessage const message = makeMessage(kDoubler, nullptr);
  std::string bytes(reinterpret_cast<char const*>(&message), sizeof(message));
  bytes.resize(100000);
  for (size_t size :
       {size_t{1}, sizeof(message) / 2, sizeof(message) - 1, sizeof(message) + 1, bytes.size()}) {
    tConnection connection(path);
    EXPECT_EQ(connection.awaitGreeting(), kRequestAccepted);
    EXPECT_TRUE(connection.send(bytes.data(), size)) << size;
    EXPECT_EQ(connection.awaitReply(), kRequestMalformed) << size;
    EXPECT_TRUE(connection.isHungUpOn()) << size;
  }
  EXPECT_EQ(callOnce(), 0);
}

TEST_F(RequestCallers, AConnectionIsOfTheProcessThatMadeIt) {
  tConnection connection(path);
  EXPECT_EQ(connection.awaitGreeting(), kRequestAccepted);
  static tDoubling doubling;
  tChild heir([&] {
    if (!connection.send(kDoubler, &doubling)) return 100;
    return connection.awaitReply();
  });
  EXPECT_EQ(heir.await(), kRequestOtherProcess);
  EXPECT_EQ(doubler->served, 0);
}

// Whatever it sends behind a refusal.
TEST_F(RequestCallers, OneThatIsRefusedAndGoesOnSendingIsHungUpOn) {
  tConnection connection(path);
  EXPECT_EQ(connection.awaitGreeting(), kRequestAccepted);
  static tDoubling doubling;
  tChild heir([&] {
    for (int count = 0; count < 3; ++count) connection.send(kDoubler, &doubling);
    return connection.awaitReply();
  });
  EXPECT_EQ(heir.await(), kRequestOtherProcess);
  EXPECT_TRUE(connection.isHungUpOn());
  EXPECT_EQ(doubler->begun, 0);
}

TEST_F(RequestCallers, AnHeirOfADeadProcessIsNotServed) {
  tSignal const isGone;
  tSignal const answer;
  pid_t maker = fork();
  if (maker == 0) {
    static tDoubling doubling;
    tConnection connection(path);
    bool const isGreeted = connection.awaitGreeting() == kRequestAccepted;
    if (fork() != 0) _exit(isGreeted ? 0 : 1);
    bool const isSent = isGone.await() && connection.send(kDoubler, &doubling);
    int const reply = isSent ? connection.awaitReply() : tConnection::kNothing;
    _exit(reply == kRequestOtherProcess && answer.give() ? 0 : 1);
  }
  int status = 0;
  waitpid(maker, &status, 0);
  EXPECT_EQ(status, 0);
  EXPECT_TRUE(isGone.give());
  EXPECT_TRUE(answer.await());
  EXPECT_EQ(doubler->served, 0);
}

// It connects while the server welcomes another one, and its heir holds the connection.
TEST_F(RequestCallers, OneThatIsGoneWhenItsTurnComesIsHungUpOn) {
  struct tScene {
    std::string const& path;
    tSignal isHungUpOn;
    bool isOver = false;
  };
  tScene scene = {path, {}};
  ntoshost::visitFallibleCalls(
      [](void* context, u32 kind) {
        auto& at = *static_cast<tScene*>(context);
        if (kind != ntoshost::kFaultThread || std::exchange(at.isOver, true)) return;
        tChild maker([&at] {
          tConnection const connection(at.path);
          if (fork() != 0) return 0;
          return connection.isHungUpOn() && at.isHungUpOn.give() ? 0 : 1;
        });
      },
      &scene);
  EXPECT_EQ(callOnce(), 0);
  EXPECT_TRUE(scene.isHungUpOn.await());
  ntoshost::visitFallibleCalls(nullptr, nullptr);
}

TEST_F(RequestCallers, ThoseThatSayNothingHoldUpNobody) {
  std::vector<std::unique_ptr<tConnection>> silent;
  for (u32 count = 0; count < 3 * kRequestPlaces; ++count) {
    silent.push_back(std::make_unique<tConnection>(path));
    EXPECT_EQ(silent.back()->awaitGreeting(), kRequestAccepted) << count;
  }
  EXPECT_EQ(callOnce(), 0);
  // The one that was silent longest had to go, the last one is still served.
  static tDoubling doubling = {5};
  EXPECT_EQ(silent.front()->awaitReply(), tConnection::kNothing);
  EXPECT_TRUE(silent.back()->send(kDoubler, &doubling));
  EXPECT_EQ(silent.back()->awaitReply(), kRequestAccepted);
  EXPECT_EQ(doubling.result, 10u);
}

TEST_F(RequestCallers, WhenAllPlacesOfAUserAreBusyItsNextOneIsTold) {
  std::vector<std::unique_ptr<tConnection>> busy;
  static tDoubling doublings[kRequestPlacesOfOneUser];
  for (tDoubling& doubling : doublings) {
    doubling.waitsAtTheGate = 1;
    busy.push_back(std::make_unique<tConnection>(path));
    EXPECT_EQ(busy.back()->awaitGreeting(), kRequestAccepted);
    EXPECT_TRUE(busy.back()->send(kDoubler, &doubling));
  }
  doubler->gate.awaitArrivals(kRequestPlacesOfOneUser);
  EXPECT_EQ(tConnection(path).awaitGreeting(), kRequestTooManyCallers);
  doubler->gate.open();
  for (auto const& connection : busy) EXPECT_EQ(connection->awaitReply(), kRequestAccepted);
  EXPECT_EQ(callOnce(), 0);
}

TEST_F(RequestCallers, OneThatTakesNoAnswersIsHungUpOn) {
  tConnection deaf(path);
  tRequestMessage const message = makeMessage("nTEST://nNobody", nullptr);
  size_t sent = 0;
  while (sent < 1000000 && deaf.send(&message, sizeof(message))) ++sent;
  EXPECT_LT(sent, 1000000u);
  EXPECT_EQ(callOnce(), 0);
}

TEST_F(RequestCallers, AStopWaitsForTheRequestThatRuns) {
  tChild child([this] {
    tDoubling doubling = {21, 0, 1};
    tConnection connection(path);
    bool const isServed = connection.call(kDoubler, &doubling) == kRequestAccepted;
    if (!isServed || doubling.result != 42) return 1;
    return connection.isHungUpOn() ? 0 : 2;
  });
  doubler->gate.awaitArrivals(1);
  tConnection silent(path);
  EXPECT_EQ(silent.awaitGreeting(), kRequestAccepted);
  std::thread stopping(stopRequestServer);
  // The socket is taken away first, and those that are silent are let go.
  EXPECT_EQ(silent.awaitReply(), tConnection::kNothing);
  EXPECT_FALSE(tConnection(path).isConnected());
  EXPECT_EQ(doubler->served, 0);
  doubler->gate.open();
  stopping.join();
  EXPECT_EQ(doubler->served, 1);
  EXPECT_EQ(child.await(), 0);
}

TEST_F(RequestCallers, AStopLetsGoOfThoseThatSayNothing) {
  std::vector<std::unique_ptr<tConnection>> silent;
  for (u32 count = 0; count < kRequestPlaces; ++count) {
    silent.push_back(std::make_unique<tConnection>(path));
  }
  stopRequestServer();
  for (auto const& connection : silent) {
    while (connection->awaitReply() != tConnection::kNothing) {
    }
  }
}

TEST_F(RequestCallers, CallsWhileServersComeAndGoAreServedOrRefusedAtOnce) {
  tSignal const isEnough;
  tChild child([&] {
    int served = 0;
    for (int calls = 0; served < 20 && calls < 100000; ++calls) {
      tDoubling doubling = {21};
      tConnection connection(path);
      if (connection.call(kDoubler, &doubling) == kRequestAccepted) ++served;
    }
    return isEnough.give() && served == 20 ? 0 : 1;
  });
  std::thread restarting([&] {
    for (int round = 0; round < 50; ++round) {
      stopRequestServer();
      startServer();
    }
  });
  restarting.join();
  EXPECT_TRUE(isEnough.await());
  EXPECT_EQ(child.await(), 0);
}

TEST_F(RequestCallers, AnotherUserIsToldThatHeIsRefused) {
  constexpr uid_t kSomebody = 65534;
  if (geteuid() != 0) GTEST_SKIP() << "only root can become another user";
  std::filesystem::permissions(path, std::filesystem::perms{0666});
  auto const callAsSomebody = [this] {
    tDoubling doubling = {21};
    if (setuid(kSomebody) != 0) return 100;
    return tConnection(path).call(kDoubler, &doubling);
  };
  EXPECT_EQ(tChild(callAsSomebody).await(), kRequestOtherUser);
  EXPECT_EQ(doubler->served, 0);
}

TEST_F(RequestCallers, AnotherUserCannotEvenOpenTheSocket) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can become another user";
  auto const connectAsSomebody = [this] {
    if (setuid(65534) != 0) return 100;
    return tConnection(path).isConnected() ? 1 : 0;
  };
  EXPECT_EQ(tChild(connectAsSomebody).await(), 0);
}

// Who has changed its user is closed to others of the new one, until it opens itself.
TEST_F(RequestCallers, OneThatClosesItsMemoryIsToldSo) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can become another user";
  stopRequestServer();
  tSignal const mayCall;
  tSignal const mayEnd;
  std::filesystem::permissions(folder.pathOf(""), std::filesystem::perms{0777});
  tChild server([&] {
    if (setuid(65534) != 0 || !startRequestServer(path.c_str())) return 1;
    bool const isSaid = mayCall.give() && mayEnd.await();
    stopRequestServer();
    return isSaid ? 0 : 2;
  });
  EXPECT_TRUE(mayCall.await());
  auto const call = [this](unsigned long isOpen) {
    tDoubling doubling = {21};
    if (setuid(65534) != 0 || prctl(PR_SET_DUMPABLE, isOpen) != 0) return 100;
    return tConnection(path).call(kDoubler, &doubling) + (doubling.result == 42 ? 10 : 0);
  };
  EXPECT_EQ(tChild([&] { return call(0); }).await(), kRequestMemoryClosed);
  EXPECT_EQ(tChild([&] { return call(1); }).await(), kRequestAccepted + 10);
  EXPECT_TRUE(mayEnd.give());
  EXPECT_EQ(server.await(), 0);
}

// Root may call any server, but only root may look into the memory of root.
TEST_F(RequestCallers, OneWhoseMemoryIsClosedIsToldSo) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can become another user";
  stopRequestServer();
  tSignal const mayCall;
  tSignal const mayEnd;
  std::filesystem::permissions(folder.pathOf(""), std::filesystem::perms{0777});
  tChild server([&] {
    if (setuid(65534) != 0 || !startRequestServer(path.c_str())) return 1;
    bool const isSaid = mayCall.give() && mayEnd.await();
    stopRequestServer();
    return isSaid ? 0 : 2;
  });
  EXPECT_TRUE(mayCall.await());
  tDoubling doubling = {21};
  EXPECT_EQ(tConnection(path).call(kDoubler, &doubling), kRequestMemoryClosed);
  EXPECT_TRUE(mayEnd.give());
  EXPECT_EQ(server.await(), 0);
}
