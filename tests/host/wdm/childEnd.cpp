// The end of a child, whoever brings it about: its handler deletes itself in stop(), after the last
// request has left it, and is never called again.

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <future>
#include <thread>
#include <vector>

#include "isWaiting.h"
#include "ntos/pnp.h"
#include "rounds.h"
#include "support/tBusStack.h"
#include "trace/startedModules.h"
#include "vexkntos/handlerOf.h"
#include "wdm/tMortalHandler.h"
#include "wdm/tPnpBus.h"

namespace {

constexpr int kRaces = roundsOf(160);

// A started bus with a child that the system does not know yet.
class tUnreportedChild : public tBusStack {
 public:
  tUnreportedChild() {
    startBus();
    tTestChild child(handler, 1, 5);
    child.description.handler = new tMortalHandler(fate);
    create(child.description);
    device = driver().newestDevice();
    ObfReferenceObject(device);  // as the system does
  }
  ~tUnreportedChild() { ObfDereferenceObject(device); }
  tUnreportedChild(tUnreportedChild const&) = delete;
  tUnreportedChild& operator=(tUnreportedChild const&) = delete;

  bool isDeleted() const { return driver().newestDevice() != device; }

  i32 take() {
    i32 status = 0;
    children->removeChild(5, status);
    return status;
  }
  std::future<i32> takeAside() {
    return std::async(std::launch::async, [this] { return take(); });
  }

  // What the system does when the bus does not list the child any more.
  void drop() {
    countRelations();
    EXPECT_EQ(sendPnp(device, IRP_MN_REMOVE_DEVICE), STATUS_SUCCESS);
  }

  NTSTATUS control() { return tDeviceRequest(device, IRP_MJ_DEVICE_CONTROL).send(); }

  // Sends a control that stays in the handler.
  std::future<NTSTATUS> controlAside() {
    fate.holds = true;
    auto result = std::async(std::launch::async, [this] { return control(); });
    fate.waitUntilRunning();
    return result;
  }

  tMortalFate fate;
  DEVICE_OBJECT* device;
};

class tShortHandler final : public tChildHandler {};

// The same with a child that the system knows and has not started.
class tReportedChild : public tUnreportedChild {
 public:
  tReportedChild() { countRelations(); }
};

void setPower(DEVICE_OBJECT* device, DEVICE_POWER_STATE state) {
  tDeviceRequest request(device, IRP_MJ_POWER, IRP_MN_SET_POWER);
  request.location().Parameters.Power.Type = DevicePowerState;
  request.location().Parameters.Power.State.DeviceState = state;
  request.send();
}

// What happens to a child while the first request that lists it is below the bus, which then ends
// with this status.
template <class Meanwhile>
void duringFirstReport(tUnreportedChild& bus, NTSTATUS status, Meanwhile meanwhile) {
  bus.keepsRelations = true;
  bus.floorStatus = status;
  std::future<void> const query = std::async(std::launch::async, [&bus, status] {
    tDeviceRequest request(bus.bus(), IRP_MJ_PNP, IRP_MN_QUERY_DEVICE_RELATIONS);
    request.location().Parameters.QueryDeviceRelations.Type = BusRelations;
    request.send();
    EXPECT_EQ(request.status(), status);
    request.freeRelations();
  });
  while (__atomic_load_n(&bus.kept, __ATOMIC_ACQUIRE) == nullptr) std::this_thread::yield();
  bus.keepsRelations = false;
  bus.floorStatus = STATUS_SUCCESS;
  meanwhile();
  bus.floorStatus = status;
  bus.completeKept();
  query.wait();
  bus.floorStatus = STATUS_SUCCESS;
}

// Lets all of them go at about the same time.
void race(std::vector<std::function<void()>> const& runners) {
  std::atomic<size_t> ready = 0;
  std::vector<std::thread> threads;
  for (auto const& run : runners) {
    threads.emplace_back([&] {
      ++ready;
      while (ready != runners.size()) std::this_thread::yield();
      run();
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace

TEST(ChildEnd, ATakenChildsHandlerIsStoppedBeforeTheCallReturns) {
  tReportedChild bus;
  EXPECT_EQ(bus.take(), 0);
  EXPECT_EQ(bus.fate.stops, 1);
  EXPECT_EQ(bus.control(), STATUS_DELETE_PENDING);
  bus.drop();
  EXPECT_EQ(bus.fate.stops, 1);
}

TEST(ChildEnd, ARequestAfterTheEndMeetsAHandlerOfTheWrappers) {
  tReportedChild bus;
  EXPECT_EQ(bus.take(), 0);
  iDeviceHandler& handler = vexHandlerOf(*bus.device);
  EXPECT_TRUE(handler.isChildDevice());
  u64 information = 0;
  i32 status = 0;
  handler.handleDeviceControl(0, nullptr, 0, nullptr, 0, &information, &status);
  EXPECT_EQ(status, STATUS_DELETE_PENDING);
  for (u8 major = 0; major <= IRP_MJ_MAXIMUM_FUNCTION; ++major) {
    tDeviceRequest request(bus.device, major, IRP_MN_QUERY_REMOVE_DEVICE);
    request.send();
    EXPECT_EQ(request.completions(), 1);
  }
  bus.drop();
}

TEST(ChildEnd, AChildThatEndsWithItsBusIsStartedNoMore) {
  tReportedChild bus;
  bus.removeBus();
  EXPECT_TRUE(bus.isDeleted());
  EXPECT_EQ(sendPnp(bus.device, IRP_MN_START_DEVICE), STATUS_DELETE_PENDING);
}

TEST(ChildEnd, WhoeverFindsTheDrainBegunWaitsForItsEnd) {
  tReportedChild bus;
  std::future<NTSTATUS> const request = bus.controlAside();
  std::future<i32> const removal = bus.takeAside();
  while (bus.control() != STATUS_DELETE_PENDING) {
  }
  std::future<void> const drop = std::async(std::launch::async, [&bus] { bus.drop(); });
  EXPECT_TRUE(isWaiting(drop));
  EXPECT_TRUE(isWaiting(removal));
  EXPECT_EQ(bus.fate.stops, 0);
  bus.fate.holds = false;
  drop.wait();
  removal.wait();
  EXPECT_EQ(bus.fate.stops, 1);
  EXPECT_EQ(bus.fate.runningAtStop, 0);
}

TEST(ChildEnd, ABusThatGoesWaitsForARemovalOnItsWay) {
  tReportedChild bus;
  std::future<NTSTATUS> const request = bus.controlAside();
  std::future<i32> const removal = bus.takeAside();
  while (bus.control() != STATUS_DELETE_PENDING) {
  }
  std::future<void> const end = std::async(std::launch::async, [&bus] { bus.removeBus(); });
  EXPECT_TRUE(isWaiting(end));
  EXPECT_EQ(bus.fate.stops, 0);
  bus.fate.holds = false;
  end.wait();
  EXPECT_EQ(bus.fate.stops, 1);
  EXPECT_EQ(bus.fate.runningAtStop, 0);
}

TEST(ChildEnd, ARemovalMayRaceWithTheRequestsThatDropTheChild) {
  for (int round = 0; round < kRaces; ++round) {
    tReportedChild bus;
    race({[&] { EXPECT_EQ(bus.take(), 0); },
          [&] {
            bus.countRelations();
            sendPnp(bus.device, IRP_MN_REMOVE_DEVICE);
          },
          [&] { bus.control(); }});
    bus.drop();
    ASSERT_EQ(bus.fate.stops, 1);
    ASSERT_EQ(bus.fate.runningAtStop, 0);
  }
}

TEST(ChildEnd, TheBusMayRaceWithARemovalAndTheChildsOwn) {
  for (int round = 0; round < kRaces; ++round) {
    tReportedChild bus;
    DEVICE_OBJECT* const function = bus.bus();
    race({[&] { bus.take(); }, [&] { sendPnp(function, IRP_MN_SURPRISE_REMOVAL); },
          [&] { sendPnp(bus.device, IRP_MN_REMOVE_DEVICE); }, [&] { bus.control(); }});
    sendPnp(bus.device, IRP_MN_REMOVE_DEVICE);
    ASSERT_EQ(bus.fate.stops, 1);
    ASSERT_EQ(bus.fate.runningAtStop, 0);
  }
}

TEST(ChildEnd, AChildTakenDuringAReportThatFailsIsGoneWithIt) {
  tUnreportedChild bus;
  duringFirstReport(bus, STATUS_NO_SUCH_DEVICE, [&bus] {
    EXPECT_EQ(bus.take(), 0);
    EXPECT_EQ(bus.fate.stops, 1);
    EXPECT_FALSE(bus.isDeleted());
  });
  EXPECT_TRUE(bus.isDeleted());
  EXPECT_EQ(bus.fate.stops, 1);
  EXPECT_EQ(sendPnp(bus.device, IRP_MN_START_DEVICE), STATUS_DELETE_PENDING);
}

TEST(ChildEnd, AChildTakenDuringAReportThatSucceedsWaitsForItsRemoval) {
  tUnreportedChild bus;
  duringFirstReport(bus, STATUS_SUCCESS, [&bus] { EXPECT_EQ(bus.take(), 0); });
  EXPECT_FALSE(bus.isDeleted());
  bus.drop();
  EXPECT_TRUE(bus.isDeleted());
  EXPECT_EQ(bus.fate.stops, 1);
}

TEST(ChildEnd, ABusThatGoesBySurpriseDuringAReportThatFailsLeavesNothing) {
  tUnreportedChild bus;
  duringFirstReport(bus, STATUS_NO_SUCH_DEVICE, [&bus] {
    sendPnp(bus.bus(), IRP_MN_SURPRISE_REMOVAL);
    EXPECT_EQ(bus.fate.stops, 0);
  });
  EXPECT_TRUE(bus.isDeleted());
  EXPECT_EQ(bus.fate.stops, 1);
  tDeviceRequest again(bus.bus(), IRP_MJ_PNP, IRP_MN_QUERY_DEVICE_RELATIONS);
  again.location().Parameters.QueryDeviceRelations.Type = BusRelations;
  EXPECT_EQ(again.send(), STATUS_SUCCESS);
  again.freeRelations();
}

TEST(ChildEnd, ABusThatGoesBySurpriseDuringAReportThatSucceedsLeavesItToTheSystem) {
  tUnreportedChild bus;
  duringFirstReport(bus, STATUS_SUCCESS, [&bus] { sendPnp(bus.bus(), IRP_MN_SURPRISE_REMOVAL); });
  EXPECT_FALSE(bus.isDeleted());
  EXPECT_EQ(bus.fate.stops, 0);
  EXPECT_EQ(sendPnp(bus.device, IRP_MN_REMOVE_DEVICE), STATUS_SUCCESS);
  EXPECT_TRUE(bus.isDeleted());
  EXPECT_EQ(bus.fate.stops, 1);
}

TEST(ChildEnd, AStartedChildWhoseBusGoesDuringAReportThatFailsWaitsForItsRemoval) {
  tUnreportedChild bus;
  duringFirstReport(bus, STATUS_NO_SUCH_DEVICE, [&bus] {
    EXPECT_EQ(sendPnp(bus.device, IRP_MN_START_DEVICE), STATUS_SUCCESS);
    sendPnp(bus.bus(), IRP_MN_SURPRISE_REMOVAL);
  });
  EXPECT_FALSE(bus.isDeleted());
  EXPECT_EQ(bus.fate.stops, 0);
  EXPECT_EQ(sendPnp(bus.device, IRP_MN_REMOVE_DEVICE), STATUS_SUCCESS);
  EXPECT_TRUE(bus.isDeleted());
  EXPECT_EQ(bus.fate.stops, 1);
}

TEST(ChildEnd, AChildThatWasTakenMayStartWhenItsBusHasGone) {
  tUnreportedChild bus;
  duringFirstReport(bus, STATUS_SUCCESS, [&bus] { EXPECT_EQ(bus.take(), 0); });
  sendPnp(bus.bus(), IRP_MN_SURPRISE_REMOVAL);
  EXPECT_FALSE(bus.isDeleted());
  EXPECT_EQ(sendPnp(bus.device, IRP_MN_START_DEVICE), STATUS_SUCCESS);
  EXPECT_EQ(sendPnp(bus.device, IRP_MN_REMOVE_DEVICE), STATUS_SUCCESS);
  EXPECT_TRUE(bus.isDeleted());
  EXPECT_EQ(bus.fate.stops, 1);
}

TEST(ChildEnd, RelationsMayRaceWithTheRemovalOfTheBus) {
  for (int round = 0; round < kRaces; ++round) {
    tReportedChild bus;
    DEVICE_OBJECT* const function = bus.bus();
    ObfReferenceObject(function);
    auto const ask = [function] {
      tDeviceRequest request(function, IRP_MJ_PNP, IRP_MN_QUERY_DEVICE_RELATIONS);
      request.location().Parameters.QueryDeviceRelations.Type = BusRelations;
      request.send();
      request.freeRelations();
    };
    race({ask, [&] { bus.removeBus(); }, [&] { sendPnp(function, IRP_MN_SURPRISE_REMOVAL); }});
    sendPnp(bus.device, IRP_MN_REMOVE_DEVICE);
    ASSERT_EQ(bus.fate.stops, 1);
    ObfDereferenceObject(function);
  }
}

TEST(ChildEnd, AHandlerMayBeDeletedWhenTheRemovalHasReturned) {
  for (bool isStarted : {false, true}) {
    tPnpBus bus;
    ntoshost::setChildrenStart(isStarted);
    auto* const handler = new tShortHandler;
    ASSERT_EQ(bus.create(1, 5, *handler), 0);
    ntoshost::enumerateDevice(bus.physical);
    DEVICE_OBJECT* const child = ntoshost::childOf(bus.physical, 0);
    ASSERT_NE(child, nullptr);
    ObfReferenceObject(child);
    EXPECT_EQ(bus.take(5), 0);
    delete handler;
    tDeviceRequest(child, IRP_MJ_DEVICE_CONTROL).send();
    ntoshost::enumerateDevice(bus.physical);
    ntoshost::waitForPnp();
    EXPECT_EQ(ntoshost::childrenOf(bus.physical), 0u);
    ObfDereferenceObject(child);
    ntoshost::setChildrenStart(true);
  }
}

TEST(ChildEnd, PowerThatStaysOrComesUpEndsNoHandler) {
  tPnpBus bus(ntoshost::PnpMode::OnRequest);
  tMortalFate fate;
  ASSERT_EQ(bus.create(1, 5, *new tMortalHandler(fate)), 0);
  ntoshost::enumerateDevice(bus.physical);
  DEVICE_OBJECT* const child = ntoshost::childOf(bus.physical, 0);
  setPower(child, PowerDeviceD3);
  std::future<i32> removal = std::async(std::launch::async, [&bus] { return bus.take(5); });
  EXPECT_TRUE(isWaiting(removal));
  for (DEVICE_POWER_STATE const state : {PowerDeviceD3, PowerDeviceD0, PowerDeviceD0}) {
    setPower(child, state);
    EXPECT_TRUE(isWaiting(removal));
    EXPECT_TRUE(fate.isAlive());
  }
  setPower(child, PowerDeviceD1);
  EXPECT_EQ(removal.get(), 0);
  EXPECT_EQ(ntoshost::runPnpWork(), 1u);
  EXPECT_EQ(fate.stops, 1);
}

// The system takes the child by surprise while its bus waits for the end of its handler.
TEST(ChildEnd, SurpriseEndsTheHandlerThatSomebodyWaitsFor) {
  tPnpBus bus(ntoshost::PnpMode::OnRequest);
  tMortalFate fate;
  ASSERT_EQ(bus.create(1, 5, *new tMortalHandler(fate)), 0);
  ntoshost::enumerateDevice(bus.physical);
  DEVICE_OBJECT* const child = ntoshost::childOf(bus.physical, 0);
  std::future<i32> removal = std::async(std::launch::async, [&bus] { return bus.take(5); });
  EXPECT_TRUE(isWaiting(removal));
  EXPECT_EQ(sendPnp(child, IRP_MN_SURPRISE_REMOVAL), STATUS_SUCCESS);
  EXPECT_EQ(removal.get(), 0);
  EXPECT_EQ(fate.stops, 1);
  EXPECT_TRUE(fate.isSurprise);
  EXPECT_EQ(ntoshost::runPnpWork(), 1u);
  EXPECT_EQ(ntoshost::childrenOf(bus.physical), 0u);
}

TEST(ChildEnd, PowerDownEndsTheHandlerThatSomebodyWaitsFor) {
  tPnpBus bus(ntoshost::PnpMode::OnRequest);
  tMortalFate fate;
  ASSERT_EQ(bus.create(1, 5, *new tMortalHandler(fate)), 0);
  ntoshost::enumerateDevice(bus.physical);
  DEVICE_OBJECT* const child = ntoshost::childOf(bus.physical, 0);
  std::future<i32> removal = std::async(std::launch::async, [&bus] { return bus.take(5); });
  while (fate.isAlive()) {
    setPower(child, PowerDeviceD0);
    setPower(child, PowerDeviceD3);
  }
  EXPECT_EQ(removal.get(), 0);
  EXPECT_FALSE(fate.isSurprise);
  EXPECT_EQ(ntoshost::runPnpWork(), 1u);
  EXPECT_EQ(ntoshost::childrenOf(bus.physical), 0u);
  EXPECT_EQ(fate.stops, 1);
}
