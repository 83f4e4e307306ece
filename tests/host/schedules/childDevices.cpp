// A bus and its children that come and go, in every order of the threads that make, use, report,
// remove and take them away.

#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "ntos/wait.h"
#include "ntoshost/executive.h"
#include "package/windows/wdm/tChildDevice.h"
#include "schedules/tExplorer.h"
#include "trace/startedModules.h"
#include "vexk/statusCodes.h"
#include "wdm/tPnpBus.h"

namespace {

constexpr u64 kInstance = 1;
constexpr u32 kSlot = 5;
constexpr i32 kBusRemoved = -50300;
constexpr i32 kChildExists = -50303;

// What becomes of the handler of a child, which deletes itself in its last call.
struct tChildFate {
  int within = 0;
  int stops = 0;
  int served = 0;
};

class tWatchedChild final : public iChildHandler {
 public:
  explicit tWatchedChild(tChildFate& told) : fate(told) {}
  tWatchedChild(tWatchedChild const&) = delete;
  tWatchedChild& operator=(tWatchedChild const&) = delete;

  void handleDeviceControl(u32, void*, u32, void*, u32, u64*, i32*) override {
    tChildFate& told = fate;  // the handler is not there any more when something is wrong
    ++told.within;
    ntoshost::schedulePoint();
    EXPECT_EQ(told.stops, 0) << "a request was in the handler as it ended";
    --told.within;
    ++told.served;
  }

  void stop(bool /*isSurprise*/) override {
    EXPECT_EQ(fate.within, 0) << "the handler ended around a request";
    EXPECT_EQ(fate.stops, 0) << "the handler ended twice";
    ++fate.stops;
    delete this;
  }

 private:
  tChildFate& fate;
};

// A bus on which nothing happens but what the model does.
class tModelBus {
 public:
  i32 create(u64 instance, u32 slot, tChildFate& fateOfIt) {
    auto* const made = new tWatchedChild(fateOfIt);
    i32 const status = bus.create(instance, slot, *made);
    if (status < 0) delete made;
    return status;
  }
  void addChild() { EXPECT_EQ(create(kInstance, kSlot, fate), 0); }

  // The system knows the child and has started it. The model has a reference on it.
  void addStartedChild() {
    addChild();
    EXPECT_EQ(ntoshost::enumerateDevice(bus.physical), STATUS_SUCCESS);
    child = ntoshost::childOf(bus.physical, 0);
    ObfReferenceObject(child);
  }

  // The same, which the system leaves unstarted.
  void addUnstartedChild() {
    ntoshost::setChildrenStart(false);
    addStartedChild();
    ntoshost::setChildrenStart(true);
  }

  // Takes the child away; its handler has ended then.
  void take() {
    EXPECT_EQ(bus.take(kSlot), 0);
    EXPECT_EQ(fate.stops, 1);
    isTaken = true;
  }

  // Whether somebody waits for the system to let go of the child.
  bool isAwaited() const {
    using namespace nOXDIAG100;
    auto* const extension = static_cast<tDeviceExtension*>(child->DeviceExtension);
    return static_cast<tChildDevice*>(extension)->isAwaited;
  }

  // Does what the system does, until the child is taken away.
  void serveUntilTaken() {
    while (!isTaken) {
      if (ntoshost::runPnpWork() == 0) ntoshost::scheduleYield();
    }
    ntoshost::runPnpWork();
  }

  // Nothing of the child is left.
  void requireGone() {
    ntoshost::runPnpWork();
    if (child != nullptr) ObfDereferenceObject(child);
    child = nullptr;
    EXPECT_EQ(fate.stops, 1);
    if (bus.physical == nullptr) return;
    EXPECT_EQ(ntoshost::enumerateDevice(bus.physical), STATUS_SUCCESS);
    EXPECT_EQ(ntoshost::childrenOf(bus.physical), 0u);
    EXPECT_EQ(ntoshost::countDevices().devices, kDevicesOfABus);
  }

  tLowerFilter filter{"oxdiagfilter"};
  tPnpBus bus{ntoshost::PnpMode::OnRequest, "oxdiagbus", &filter};
  tChildFate fate;
  DEVICE_OBJECT* child = nullptr;
  bool isTaken = false;

 private:
  static constexpr u64 kDevicesOfABus = 3;  // physical, filter, function
};

// A child in use is taken away. A request that was in its handler is complete then.
class tTakeBesideUse {
 public:
  static constexpr unsigned kThreads = 3;

  tTakeBesideUse() {
    model.addStartedChild();
    request = std::make_unique<tDeviceRequest>(model.child, u8{IRP_MJ_DEVICE_CONTROL});
  }
  void run(unsigned thread) {
    if (thread == 0) take();
    if (thread == 1) model.serveUntilTaken();
    if (thread == 2) request->send();
  }
  void finish() {
    EXPECT_EQ(request->completions(), 1);
    NTSTATUS const status = request->status();
    EXPECT_EQ(status, model.fate.served == 1 ? STATUS_SUCCESS : STATUS_DELETE_PENDING);
    request.reset();
    model.requireGone();
  }

 private:
  void take() {
    model.take();
    EXPECT_GE(request->completions(), model.fate.served);
  }

  tModelBus model;
  std::unique_ptr<tDeviceRequest> request;
};

// A child is taken away that the system knows and has not started, while the system is told.
class tTakeOfUnstarted {
 public:
  static constexpr unsigned kThreads = 2;

  tTakeOfUnstarted() { model.addUnstartedChild(); }
  void run(unsigned thread) {
    if (thread == 0) return model.take();
    ntoshost::enumerateDevice(model.bus.physical);
    model.serveUntilTaken();
  }
  void finish() { model.requireGone(); }

 private:
  tModelBus model;
};

// A child that is open: its handler ends, and its device stays until it is closed.
class tTakeOfOpen {
 public:
  static constexpr unsigned kThreads = 2;

  tTakeOfOpen() {
    model.bus.assignFunction();
    model.addStartedChild();
    EXPECT_EQ(ntoshost::openDevice(model.child, &file), STATUS_SUCCESS);
  }
  void run(unsigned thread) {
    if (thread == 0) return model.take();
    model.serveUntilTaken();
    ntoshost::closeDevice(file);
  }
  void finish() { model.requireGone(); }

 private:
  tModelBus model;
  FILE_OBJECT* file = nullptr;
};

// The bus is removed while somebody waits for the system to let go of a child, and asks for that.
class tTakeBesideBusRemoval {
 public:
  static constexpr unsigned kThreads = 2;

  tTakeBesideBusRemoval() { model.addStartedChild(); }
  void run(unsigned thread) {
    if (thread == 0) return model.take();
    while (!model.isAwaited()) ntoshost::scheduleYield();
    model.bus.removeBus();
  }
  void finish() { model.requireGone(); }

 private:
  tModelBus model;
};

// A child that nobody has heard of is taken away while the system asks for the children.
class tTakeBesideReport {
 public:
  static constexpr unsigned kThreads = 2;

  tTakeBesideReport() { model.addChild(); }
  void run(unsigned thread) {
    if (thread == 0) return model.take();
    ntoshost::enumerateDevice(model.bus.physical);
    model.serveUntilTaken();
  }
  void finish() { model.requireGone(); }

 private:
  tModelBus model;
};

// The same when the request for the children fails below the bus.
class tTakeBesideFailedReport {
 public:
  static constexpr unsigned kThreads = 2;

  tTakeBesideFailedReport() {
    model.addChild();
    model.filter.failNext(IRP_MN_QUERY_DEVICE_RELATIONS);
  }
  void run(unsigned thread) {
    if (thread == 0) return model.take();
    EXPECT_NE(ntoshost::enumerateDevice(model.bus.physical), STATUS_SUCCESS);
    model.serveUntilTaken();
  }
  void finish() { model.requireGone(); }

 private:
  tModelBus model;
};

// A child in use is taken away, and the request that would tell the system fails.
class tTakeWithFailingRelations {
 public:
  static constexpr unsigned kThreads = 2;

  tTakeWithFailingRelations() {
    model.addStartedChild();
    model.filter.failNext(IRP_MN_QUERY_DEVICE_RELATIONS);
  }
  void run(unsigned thread) {
    if (thread == 0) model.take();
    if (thread == 1) model.serveUntilTaken();
  }
  void finish() { model.requireGone(); }

 private:
  tModelBus model;
};

// A child is started as it is taken away.
class tTakeBesideStart {
 public:
  static constexpr unsigned kThreads = 2;

  tTakeBesideStart() { model.addUnstartedChild(); }
  void run(unsigned thread) {
    if (thread == 0) return model.take();
    EXPECT_EQ(ntoshost::startDevice(model.child), STATUS_SUCCESS);
    model.serveUntilTaken();
  }
  // The bus has asked the system to let go of it.
  void finish() {
    ntoshost::runPnpWork();
    EXPECT_EQ(ntoshost::childrenOf(model.bus.physical), 0u);
    model.requireGone();
  }

 private:
  tModelBus model;
};

// A child is taken away as the system removes it: by surprise, or in order.
template <bool bySurprise>
class tTakeBesideRemoval {
 public:
  static constexpr unsigned kThreads = 2;

  tTakeBesideRemoval() { model.addStartedChild(); }
  void run(unsigned thread) {
    if (thread == 0) return model.take();
    if (bySurprise) {
      ntoshost::surpriseRemoveDevice(model.child);
    } else {
      ntoshost::removeDevice(model.child);
    }
    model.serveUntilTaken();
  }
  void finish() { model.requireGone(); }

 private:
  tModelBus model;
};

// Two threads take the same child away: one of them does, and neither returns before its end.
class tTwoTakers {
 public:
  static constexpr unsigned kThreads = 3;

  tTwoTakers() { model.addStartedChild(); }
  void run(unsigned thread) {
    if (thread == 2) return model.serveUntilTaken();
    statuses[thread] = model.bus.take(kSlot);
    if (statuses[thread] == 0) {
      EXPECT_EQ(model.fate.stops, 1);
      model.isTaken = true;
    }
  }
  void finish() {
    EXPECT_NE(statuses[0] == 0, statuses[1] == 0);
    EXPECT_EQ(statuses[0] + statuses[1], kStatusBadArgument);
    model.requireGone();
  }

 private:
  tModelBus model;
  i32 statuses[2] = {};
};

// Two threads make a child with the same number.
class tTwoChildMakers {
 public:
  static constexpr unsigned kThreads = 2;

  void run(unsigned thread) {
    statuses[thread] = model.create(kInstance, kSlot + thread, fates[thread]);
  }
  void finish() {
    EXPECT_NE(statuses[0] == 0, statuses[1] == 0);
    EXPECT_EQ(statuses[0] + statuses[1], kChildExists);
    ntoshost::enumerateDevice(model.bus.physical);
    EXPECT_EQ(ntoshost::childrenOf(model.bus.physical), 1u);
    model.bus.removeBus();
    EXPECT_EQ(fates[0].stops + fates[1].stops, 1);
  }

 private:
  tModelBus model;
  tChildFate fates[2];
  i32 statuses[2] = {};
};

// The bus is removed while its component makes a child and takes one away, which it does until it
// is told to stop.
template <bool bySurprise>
class tBusGoesBesideItsMaker {
 public:
  static constexpr unsigned kThreads = 2;

  tBusGoesBesideItsMaker() {
    KeInitializeEvent(&isMade, NotificationEvent, 0);
    model.addStartedChild();
    model.bus.context = &isMade;
    model.bus.beforeStop = [](void* event) {
      KeWaitForSingleObject(event, Executive, KernelMode, 0, nullptr);
    };
  }

  void run(unsigned thread) {
    if (thread == 0) return removeBus();
    i32 const made = model.create(kInstance + 1, kSlot + 1, second);
    EXPECT_TRUE(made == 0 || made == kBusRemoved) << made;
    i32 const taken = model.bus.take(kSlot + 1);
    EXPECT_TRUE(taken == 0 || taken == kStatusBadArgument) << taken;
    EXPECT_TRUE(taken != 0 || second.stops == 1);
    wasMade = made == 0;
    KeSetEvent(&isMade, 0, 0);
  }

  void finish() {
    EXPECT_EQ(second.stops, wasMade ? 1 : 0);
    model.requireGone();
  }

 private:
  void removeBus() {
    if (bySurprise) {
      ntoshost::surpriseRemoveDevice(model.bus.physical);
      model.bus.physical = nullptr;
    } else {
      model.bus.removeBus();
    }
  }

  KEVENT isMade;
  tModelBus model;
  tChildFate second;
  bool wasMade = false;
};

}  // namespace

TEST(ChildSchedules, WhoTakesAChildAwayWaitsForItsRequests) {
  explore<tTakeBesideUse>("childUse", {0, 3000});
}

TEST(ChildSchedules, AnUnstartedChildMayGoAsTheSystemIsTold) {
  explore<tTakeOfUnstarted>("childUnstarted", {1, 800});
}

TEST(ChildSchedules, AnOpenChildHoldsUpNobody) {
  explore<tTakeOfOpen>("childOpen", {1, 60});
}

TEST(ChildSchedules, ABusMayGoBesideWhoWaitsForItsChild) {
  explore<tTakeBesideBusRemoval>("childBusRemoval", {1, 150});
}

TEST(ChildSchedules, AChildMayGoAsItIsReported) {
  explore<tTakeBesideReport>("childReport", {1, 60});
}

TEST(ChildSchedules, AChildMayGoAsItsReportFails) {
  explore<tTakeBesideFailedReport>("childFailedReport", {1, 60});
}

TEST(ChildSchedules, TheSystemIsAskedAgainToLetGo) {
  explore<tTakeWithFailingRelations>("childAskedAgain", {1, 60});
}

TEST(ChildSchedules, AChildMayGoAsItIsStarted) {
  explore<tTakeBesideStart>("childStart", {1, 60});
}

TEST(ChildSchedules, AChildMayGoAsItIsRemoved) {
  explore<tTakeBesideRemoval<false>>("childRemoval", {1, 60});
}

TEST(ChildSchedules, AChildMayGoAsItIsRemovedBySurprise) {
  explore<tTakeBesideRemoval<true>>("childSurprise", {1, 60});
}

TEST(ChildSchedules, AChildIsTakenAwayOnce) {
  explore<tTwoTakers>("childTakers", {0, 150});
}

TEST(ChildSchedules, ANumberIsForOneChild) {
  explore<tTwoChildMakers>("childMakers", {2, 60});
}

TEST(ChildSchedules, ABusMayGoBesideItsMaker) {
  explore<tBusGoesBesideItsMaker<false>>("busRemoval", {1, 60});
}

TEST(ChildSchedules, ABusMayGoBesideItsMakerBySurprise) {
  explore<tBusGoesBesideItsMaker<true>>("busSurprise", {1, 60});
}
