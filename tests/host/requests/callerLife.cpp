// One place of the request server by itself, and the peer that it holds on to.

#include "host/requests/tRequestCaller.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <chrono>
#include <thread>

#include "ntoshost/executive.h"
#include "ntoshost/faults.h"
#include "requests/heldLocks.h"
#include "requests/requestTest.h"
#include "requests/tWithheldPages.h"

using namespace vexkhost;

namespace {

using tClock = std::chrono::steady_clock;

// A place and this process at the other end of its connection.
class CallerLife : public RequestTest {
 protected:
  CallerLife() {
    EXPECT_EQ(socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends), 0);
    EXPECT_TRUE(peer.identify(ends[0]));
  }
  ~CallerLife() override {
    caller.hangUp(true);
    caller.wait();
    close(ends[1]);
  }

  void start() {
    ASSERT_TRUE(caller.start(ends[0], peer));
    tRequestGreeting greeting = {};
    EXPECT_EQ(recv(ends[1], &greeting, sizeof(greeting), 0), ssize_t{sizeof(greeting)});
  }

  void send(void const* request) const {
    tRequestMessage const message = makeMessage(kDoubler, request);
    EXPECT_EQ(::send(ends[1], &message, sizeof(message), 0), ssize_t{sizeof(message)});
  }

  // The answer that comes, or -1 at the end of the connection.
  int answer() const {
    tRequestReply reply = {};
    bool const isThere = recv(ends[1], &reply, sizeof(reply), 0) == sizeof(reply);
    return isThere ? static_cast<int>(reply.answer) : -1;
  }

  // Those that were left behind have the process of their caller open until they are back.
  void awaitCouriers() {
    caller.hangUp(true);
    caller.wait();
    while (countDescriptors() > descriptors + 1) std::this_thread::yield();
  }

  void awaitSilence() {
    while (caller.getSilence() == tRequestCaller::kBusy) std::this_thread::yield();
  }

  int ends[2] = {};
  tRequestPeer peer;
  tRequestCaller caller;
  tDoubling doubling = {21};
};

std::chrono::milliseconds timeSince(tClock::time_point start) {
  return std::chrono::duration_cast<std::chrono::milliseconds>(tClock::now() - start);
}

constexpr std::chrono::milliseconds kHalfPatience{kRequestMemoryPatience / 2};

}  // namespace

TEST_F(CallerLife, SilenceBeginsLaterWithEachRequest) {
  EXPECT_EQ(caller.getSilence(), 0u);
  start();
  u64 const first = caller.getSilence();
  EXPECT_NE(first, 0u);
  send(&doubling);
  EXPECT_EQ(answer(), kRequestAccepted);
  awaitSilence();
  EXPECT_GT(caller.getSilence(), first);
  EXPECT_EQ(caller.getMemoryWait(), 0u);
}

TEST_F(CallerLife, IsBusyWhileARequestRuns) {
  start();
  doubling.waitsAtTheGate = 1;
  send(&doubling);
  doubler->gate.awaitArrivals(1);
  EXPECT_EQ(caller.getSilence(), tRequestCaller::kBusy);
  EXPECT_FALSE(caller.hangUp(false));
  doubler->gate.open();
  EXPECT_EQ(answer(), kRequestAccepted);
}

TEST_F(CallerLife, IsSilentNoMoreWhenItIsGone) {
  start();
  EXPECT_TRUE(caller.hangUp(false));
  EXPECT_EQ(answer(), -1);
  caller.wait();
  EXPECT_EQ(caller.getSilence(), 0u);
  EXPECT_FALSE(caller.isTaken());
}

TEST_F(CallerLife, WithoutAThreadThePlaceStaysFree) {
  ntoshost::failNth(ntoshost::kFaultThread, 1);
  EXPECT_FALSE(caller.start(ends[0], peer));
  ntoshost::clearFaults();
  EXPECT_FALSE(caller.isTaken());
  EXPECT_EQ(caller.getSilence(), 0u);
  start();
}

TEST_F(CallerLife, WhatWaitsAtAHangUpIsNotServed) {
  start();
  doubling.waitsAtTheGate = 1;
  send(&doubling);
  doubler->gate.awaitArrivals(1);
  send(&doubling);
  EXPECT_TRUE(caller.hangUp(true));
  doubler->gate.open();
  EXPECT_EQ(answer(), kRequestAccepted);
  EXPECT_EQ(answer(), -1);
  EXPECT_EQ(doubler->begun, 1);
}

TEST_F(CallerLife, WithoutACourierTheCallerIsToldToComeLater) {
  start();
  ntoshost::failNth(ntoshost::kFaultThread, 1);
  send(&doubling);
  EXPECT_EQ(answer(), kRequestTooManyCallers);
  ntoshost::clearFaults();
  EXPECT_EQ(answer(), -1);
  EXPECT_EQ(doubler->begun, 0);
}

TEST_F(CallerLife, MayBeGivenUpBeforeItsFirstRequest) {
  start();
  EXPECT_EQ(caller.getMemoryWait(), 0u);
  caller.giveUpMemory();
  EXPECT_EQ(answer(), -1);
}

TEST_F(CallerLife, MayBeGivenUpWhenItWaitsForMemory) {
  if (!canWithhold()) GTEST_SKIP() << "the system lets only root handle faults of its memory";
  void* const page = newPage();
  tWithheldPages const withheld(page, kPage);
  start();
  send(page);
  withheld.awaitTouch();
  while (caller.getMemoryWait() == 0) std::this_thread::yield();
  send(&doubling);
  auto const before = tClock::now();
  caller.giveUpMemory();
  EXPECT_EQ(answer(), kRequestAccepted);
  EXPECT_EQ(answer(), -1);
  EXPECT_LT(timeSince(before), kHalfPatience);
  EXPECT_EQ(doubler->begun, 1);
  EXPECT_TRUE(withheld.deliver(page, u8{0}));
  withheld.end();
  awaitCouriers();
}

// The courier is hired for a caller that leaves in that moment.
TEST_F(CallerLife, OneThatLeavesIsServedInAHurry) {
  if (!canWithhold()) GTEST_SKIP() << "the system lets only root handle faults of its memory";
  void* const page = newPage();
  tWithheldPages const withheld(page, kPage);
  start();
  ntoshost::visitFallibleCalls(
      [](void* context, u32 kind) {
        if (kind == ntoshost::kFaultThread) static_cast<tRequestCaller*>(context)->hangUp(true);
      },
      &caller);
  auto const before = tClock::now();
  send(page);
  EXPECT_EQ(answer(), kRequestAccepted);
  EXPECT_LT(timeSince(before), kHalfPatience);
  ntoshost::visitFallibleCalls(nullptr, nullptr);
  EXPECT_TRUE(withheld.deliver(page, u8{0}));
  withheld.end();
  awaitCouriers();
}

TEST(RequestPeer, IsNobodyWithoutAConnection) {
  tRequestPeer peer;
  EXPECT_FALSE(peer.identify(-1));
}

TEST(RequestPeer, IsAliveAsLongAsItsProcess) {
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  socklen_t size = sizeof(address.sun_family);
  int const listener = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
  ASSERT_EQ(bind(listener, reinterpret_cast<sockaddr*>(&address), size), 0);
  size = sizeof(address);
  getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size);
  ASSERT_EQ(listen(listener, 2), 0);
  tSignal isConnected;
  tSignal mayEnd;
  tChild child([&] {
    int const end = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
    bool const isGood = connect(end, reinterpret_cast<sockaddr*>(&address), size) == 0;
    return isGood && isConnected.give() && mayEnd.await() ? 0 : 1;
  });
  EXPECT_TRUE(isConnected.await());
  int const connection = accept(listener, nullptr, nullptr);
  tRequestPeer peer;
  ASSERT_TRUE(peer.identify(connection));
  EXPECT_EQ(peer.getProcess(), child.pid);
  EXPECT_EQ(peer.getUser(), getuid());
  EXPECT_TRUE(peer.isAlive());
  EXPECT_TRUE(mayEnd.give());
  EXPECT_EQ(child.await(), 0);
  EXPECT_FALSE(peer.isAlive());
  peer.close();
  EXPECT_FALSE(peer.identify(connection));
  close(connection);
  close(listener);
}
