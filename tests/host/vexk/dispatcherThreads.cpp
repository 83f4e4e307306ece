// Requests that run while their dispatcher is withdrawn or its module unregistered.

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>
#include <vector>

#include "ntoshost/executive.h"
#include "vexk/iLib.h"
#include "vexk/module.h"
#include "vexk/moduleInfo.h"
#include "vexk/statusCodes.h"

namespace {

constexpr char kName[] = "nTEST://nBusy";
constexpr char kOtherName[] = "nTEST://nOther";
constexpr u64 kProbe = ~u64{0};  // a request that only asks whether it is served

i32 deliver(u64 request, char const* name = kName) {
  i32 status = 0;
  iLib::deliver(name, __builtin_strlen(name), request, status);
  return status;
}

void waitFor(std::atomic<u32> const& value, u32 wanted) {
  while (value < wanted) std::this_thread::yield();
}

// Long enough for a thread that does not wait to be caught going on.
void waitALittle() {
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
}

// Until somebody has withdrawn the dispatcher, or is about to.
void awaitWithdrawal(char const* name = kName) {
  while (deliver(kProbe, name) != kStatusNoDispatcher) std::this_thread::yield();
}

// Keeps its requests until they are let go.
class tBusy : public iLib::iDispatcher {
 public:
  explicit tBusy(char const* name = kName) : iDispatcher(name) {
    i32 status = 0;
    iLib::exportDispatcher(*this, status);
    EXPECT_EQ(status, 0);
  }
  ~tBusy() override { withdraw(); }

  void withdraw() {
    i32 status = 0;
    iLib::unexportDispatcher(*this, status);
    EXPECT_EQ(status, 0);
  }

  void dispatch(u64 request) override {
    if (request == kProbe) return;
    ++entered;
    waitFor(letGo, static_cast<u32>(request));
    ++left;
  }

  std::atomic<u32> entered = 0;
  std::atomic<u32> letGo = 0;  // requests up to this one
  std::atomic<u32> left = 0;
};

// Of the same name, exported when a test asks for it.
class tIdle : public iLib::iDispatcher {
 public:
  tIdle() : iDispatcher(kName) {}
  ~tIdle() override {
    i32 status = 0;
    iLib::unexportDispatcher(*this, status);
  }

  i32 exportNow() {
    i32 status = 0;
    iLib::exportDispatcher(*this, status);
    return status;
  }

  void dispatch(u64 /*request*/) override {}
};

i32 enter(u32 /*reason*/) {
  return 0;
}

class DispatcherThreads : public testing::Test {
 protected:
  DispatcherThreads() { vexkInitialize(); }
  ~DispatcherThreads() override {
    vexkUnload();
    EXPECT_EQ(ntoshost::outstandingBlocks(), 0u);
  }

  void open() { libRegisterModuleWithVEX(info, status); }
  void close() { libUnregisterModuleWithVEX(info, status); }

  i32 status = 0;
  tModulePackage package = {};
  _tLibModuleInfo info = {&package, "test", &enter, 0};
};

}  // namespace

TEST_F(DispatcherThreads, WithdrawingWaitsForEveryRunningRequest) {
  tBusy busy;
  open();
  std::thread first([] { EXPECT_EQ(deliver(1), 0); });
  std::thread second([] { EXPECT_EQ(deliver(2), 0); });
  waitFor(busy.entered, 2);
  std::atomic<bool> isWithdrawn = false;
  std::thread withdrawer([&] {
    busy.withdraw();
    isWithdrawn = true;
  });
  awaitWithdrawal();
  busy.letGo = 1;
  waitFor(busy.left, 1);
  waitALittle();
  EXPECT_FALSE(isWithdrawn);
  busy.letGo = 2;
  withdrawer.join();
  EXPECT_EQ(busy.left, 2u);
  first.join();
  second.join();
  close();
}

TEST_F(DispatcherThreads, UnregisteringWaitsForTheRequestsOfAllItsDispatchers) {
  tBusy busy;
  tBusy other(kOtherName);
  open();
  std::thread first([] { EXPECT_EQ(deliver(1), 0); });
  std::thread second([] { EXPECT_EQ(deliver(1, kOtherName), 0); });
  waitFor(busy.entered, 1);
  waitFor(other.entered, 1);
  std::atomic<bool> isUnregistered = false;
  std::thread unregisterer([&] {
    close();
    isUnregistered = true;
  });
  awaitWithdrawal();
  awaitWithdrawal(kOtherName);
  busy.letGo = 1;
  waitALittle();
  EXPECT_FALSE(isUnregistered);
  other.letGo = 1;
  unregisterer.join();
  first.join();
  second.join();
}

// The first one's request ends first, the second one's much later.
TEST_F(DispatcherThreads, EachWithdrawalWaitsForItsOwnRequests) {
  tBusy busy;
  tBusy other(kOtherName);
  open();
  std::thread request([] { EXPECT_EQ(deliver(1), 0); });
  std::thread otherRequest([] { EXPECT_EQ(deliver(1, kOtherName), 0); });
  waitFor(busy.entered, 1);
  waitFor(other.entered, 1);
  std::atomic<bool> isOtherWithdrawn = false;
  std::thread withdrawer([&] { busy.withdraw(); });
  awaitWithdrawal();
  std::thread otherWithdrawer([&] {
    other.withdraw();
    isOtherWithdrawn = true;
  });
  awaitWithdrawal(kOtherName);
  busy.letGo = 1;
  withdrawer.join();
  waitALittle();
  EXPECT_FALSE(isOtherWithdrawn);
  other.letGo = 1;
  for (std::thread* each : {&otherWithdrawer, &request, &otherRequest}) each->join();
  close();
}

TEST_F(DispatcherThreads, TheNameOfOneThatIsWaitedForIsTaken) {
  tBusy busy;
  open();
  std::thread request([] { EXPECT_EQ(deliver(1), 0); });
  waitFor(busy.entered, 1);
  std::thread unregisterer([&] { close(); });
  awaitWithdrawal();
  tIdle next;
  EXPECT_EQ(next.exportNow(), kStatusBadArgument);
  busy.letGo = 1;
  unregisterer.join();
  request.join();
  EXPECT_EQ(next.exportNow(), 0);
}

TEST_F(DispatcherThreads, ADispatcherMayBeWithdrawnWhileItsModuleWaitsForIt) {
  auto busy = std::make_unique<tBusy>();
  open();
  std::thread request([] { EXPECT_EQ(deliver(1), 0); });
  waitFor(busy->entered, 1);
  std::thread unregisterer([&] { close(); });
  awaitWithdrawal();
  std::thread withdrawer([&] { busy->withdraw(); });
  waitALittle();
  busy->letGo = 1;
  withdrawer.join();
  unregisterer.join();
  request.join();
}

TEST_F(DispatcherThreads, AnotherMayEndWhileItsModuleWaitsForOne) {
  tBusy busy;
  auto other = std::make_unique<tBusy>(kOtherName);
  open();
  std::thread request([] { EXPECT_EQ(deliver(1), 0); });
  waitFor(busy.entered, 1);
  std::thread unregisterer([&] { close(); });
  awaitWithdrawal(kOtherName);
  awaitWithdrawal();
  other.reset();
  { tBusy const next(kOtherName); }
  busy.letGo = 1;
  unregisterer.join();
  request.join();
}

TEST_F(DispatcherThreads, OneThatWaitsHoldsNobodyElseUp) {
  tBusy busy;
  tBusy other(kOtherName);
  other.letGo = 1;
  open();
  std::thread request([] { EXPECT_EQ(deliver(1), 0); });
  waitFor(busy.entered, 1);
  std::thread withdrawer([&] { busy.withdraw(); });
  awaitWithdrawal();
  EXPECT_EQ(deliver(1, kOtherName), 0);
  other.withdraw();
  EXPECT_EQ(deliver(1, kOtherName), kStatusNoDispatcher);
  busy.letGo = 1;
  withdrawer.join();
  request.join();
  close();
}

TEST_F(DispatcherThreads, ManyRequestsMeetManyRegistrations) {
  constexpr u32 kRounds = 100;
  std::atomic<bool> isOver = false;
  std::atomic<u32> served = 0;
  std::vector<std::thread> requesters;
  for (int index = 0; index < 3; ++index) {
    requesters.emplace_back([&] {
      while (!isOver) served += deliver(0) == 0 ? 1 : 0;
    });
  }
  for (u32 round = 0; round < kRounds; ++round) {
    tBusy busy;
    open();
    EXPECT_EQ(status, 0);
    waitFor(busy.entered, 1);
    if (round % 2 == 0) busy.withdraw();
    close();
    EXPECT_EQ(busy.entered, busy.left);
  }
  isOver = true;
  for (std::thread& requester : requesters) requester.join();
  EXPECT_GE(served, kRounds);
}
