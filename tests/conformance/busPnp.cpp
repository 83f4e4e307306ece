// Plug-and-play requests to a bus, and what becomes of its children.

#include "conformance/harness.h"
#include "ntos/pnp.h"
#include "ntos/pool.h"
#include "oxdiagk/package.h"
#include "support/tChildStack.h"

using namespace nOXDIAG100;

namespace {

constexpr u32 kForeignTag = ntosPoolTag("test");

class tRelations : public tDeviceRequest {
 public:
  explicit tRelations(DEVICE_OBJECT* bus, DEVICE_RELATION_TYPE type = BusRelations)
      : tDeviceRequest(bus, IRP_MJ_PNP, IRP_MN_QUERY_DEVICE_RELATIONS) {
    location().Parameters.QueryDeviceRelations.Type = type;
  }
  ~tRelations() { freeRelations(); }

  // Puts a list of another driver's into the request; without a device none.
  void bring(u32 count, DEVICE_OBJECT* device) {
    if (device == nullptr) return;
    size_t const size = sizeof(DEVICE_RELATIONS) + count * sizeof(DEVICE_OBJECT*);
    auto* const list =
        static_cast<DEVICE_RELATIONS*>(ExAllocatePoolWithTag(PagedPool, size, kForeignTag));
    if (list == nullptr) return;
    list->Count = count;
    for (u32 index = 0; index < count; ++index) {
      ObfReferenceObject(device);
      list->Objects[index] = device;
    }
    ioStatus().Information = reinterpret_cast<u64>(list);
  }

  // Of a request that failed.
  void takeBack() {
    auto* const list = answer<DEVICE_RELATIONS>();
    for (u32 index = 0; index < count(); ++index) ObfDereferenceObject(device(index));
    if (list != nullptr) ExFreePoolWithTag(list, kForeignTag);
    ioStatus().Information = 0;
  }

  // Of an answer that is not there: none.
  u32 count() const {
    auto const* const list = answer<DEVICE_RELATIONS>();
    return list == nullptr ? 0 : list->Count;
  }
  DEVICE_OBJECT* device(u32 index) const {
    return index < count() ? answer<DEVICE_RELATIONS>()->Objects[index] : nullptr;
  }
};

bool isListed(tTestDriver const& driver, DEVICE_OBJECT const* device) {
  DEVICE_OBJECT const* each = driver.newestDevice();
  while (each != nullptr && each != device) each = each->NextDevice;
  return each != nullptr;
}

}  // namespace

TEST(BusPnp, AStartGivesAPlaceForChildren) {
  tBusStack stack;
  EXPECT_EQ(stack.startBus(), STATUS_SUCCESS);
  EXPECT_EQ(stack.starts, 1);
  EXPECT_NE(stack.children, nullptr);
  EXPECT_EQ(stack.seenMinor, IRP_MN_START_DEVICE);
  EXPECT_EQ(stack.floorRequests, 1);
}

TEST(BusPnp, ASecondStartKeepsTheChildren) {
  tBusStack stack;
  stack.startBus();
  iChildBus* const first = stack.children;
  stack.add(1, 1);
  EXPECT_EQ(stack.startBus(), STATUS_SUCCESS);
  EXPECT_EQ(stack.starts, 2);
  EXPECT_EQ(stack.children, first);
  ASSERT_EQ(stack.countRelations(), 1u);
}

TEST(BusPnp, AStartThatFailsBelowFails) {
  tBusStack stack;
  stack.floorStatus = STATUS_NO_SUCH_DEVICE;
  EXPECT_EQ(stack.startBus(), STATUS_NO_SUCH_DEVICE);
  EXPECT_EQ(stack.starts, 0);
  stack.floorStatus = STATUS_SUCCESS;
  EXPECT_EQ(stack.startBus(), STATUS_SUCCESS);
  EXPECT_EQ(stack.starts, 1);
}

TEST(BusPnp, RelationsListTheChildren) {
  tChildStack stack;
  tRelations request(stack.bus());
  EXPECT_EQ(request.send(), STATUS_SUCCESS);
  EXPECT_EQ(request.completions(), 1);
  EXPECT_EQ(request.count(), 1u);
  EXPECT_EQ(request.device(0), stack.child);
}

TEST(BusPnp, RelationsGoDownAsASuccess) {
  tChildStack stack;
  tRelations request(stack.bus());
  EXPECT_EQ(request.send(), STATUS_SUCCESS);
  EXPECT_EQ(stack.seenMinor, IRP_MN_QUERY_DEVICE_RELATIONS);
  EXPECT_EQ(stack.seenStatus, STATUS_SUCCESS);
}

TEST(BusPnp, ABusWithoutChildrenHasAnEmptyList) {
  tBusStack stack;
  stack.startBus();
  tRelations request(stack.bus());
  EXPECT_EQ(request.send(), STATUS_SUCCESS);
  EXPECT_NE(request.answer<void>(), nullptr);
  EXPECT_EQ(request.count(), 0u);
}

TEST(BusPnp, RelationsOfOthersAreKept) {
  tBusStack stack;
  stack.startBus();
  DEVICE_OBJECT* const children[] = {stack.add(1, 1), stack.add(2, 2)};
  ASSERT_TRUE(children[0] != nullptr && children[1] != nullptr);
  u32 const counts[] = {0, 1, 3};
  for (u32 brought : counts) {
    tRelations request(stack.bus());
    request.bring(brought, stack.floor());
    NTSTATUS const status = request.send();
    if (status != STATUS_SUCCESS) request.takeBack();
    ASSERT_EQ(status, STATUS_SUCCESS);
    EXPECT_EQ(request.count(), brought + 2);
    for (u32 index = 0; index < brought; ++index) EXPECT_EQ(request.device(index), stack.floor());
    EXPECT_EQ(request.device(brought), children[0]);
    EXPECT_EQ(request.device(brought + 1), children[1]);
  }
}

TEST(BusPnp, OtherRelationsGoDownUntouched) {
  tChildStack stack;
  DEVICE_RELATION_TYPE const types[] = {EjectionRelations, PowerRelations, RemovalRelations,
                                        TargetDeviceRelation, SingleBusRelations};
  for (DEVICE_RELATION_TYPE type : types) {
    tRelations request(stack.bus(), type);
    request.send();
    EXPECT_EQ(request.answer<void>(), nullptr);
    EXPECT_EQ(stack.seenStatus, STATUS_NOT_SUPPORTED);
  }
}

TEST(BusPnp, ABusThatWasNeverStartedHasNoRelations) {
  tBusStack stack;
  tRelations request(stack.bus());
  request.send();
  EXPECT_EQ(request.answer<void>(), nullptr);
  EXPECT_EQ(stack.seenMinor, IRP_MN_QUERY_DEVICE_RELATIONS);
}

TEST(BusPnp, ARemovalDeletesChildrenThatAreNotStarted) {
  tBusStack stack;
  stack.startBus();
  DEVICE_OBJECT* const unknown = stack.add(1, 1);
  ASSERT_EQ(stack.countRelations(), 1u);
  DEVICE_OBJECT* const another = stack.add(2, 2);
  ASSERT_EQ(stack.removeBus(), STATUS_SUCCESS);
  EXPECT_EQ(stack.stops, 1);
  EXPECT_EQ(stack.releases, 1);
  EXPECT_FALSE(isListed(stack.driver(), unknown));
  EXPECT_FALSE(isListed(stack.driver(), another));
}

TEST(BusPnp, AChildThatIsStartedOutlivesItsBus) {
  tChildStack stack;
  ASSERT_EQ(sendPnp(stack.child, IRP_MN_START_DEVICE), STATUS_SUCCESS);
  ASSERT_EQ(stack.removeBus(), STATUS_SUCCESS);
  EXPECT_EQ(stack.state(), tPnpState::Started);
  EXPECT_EQ(stack.record().parent, nullptr);
  tDeviceRequest request(stack.child, IRP_MJ_PNP, IRP_MN_QUERY_BUS_INFORMATION);
  EXPECT_EQ(request.send(), STATUS_SUCCESS);
  ASSERT_NE(request.answer<PNP_BUS_INFORMATION>(), nullptr);
  EXPECT_EQ(request.answer<PNP_BUS_INFORMATION>()->BusNumber, kTestBusNumber);
  request.freeAnswer();
  ASSERT_EQ(sendPnp(stack.child, IRP_MN_REMOVE_DEVICE), STATUS_SUCCESS);
  EXPECT_FALSE(isListed(stack.driver(), stack.child));
}

TEST(BusPnp, AChildRemovedBeforeItsBusGoesWithIt) {
  tChildStack stack;
  ASSERT_EQ(stack.countRelations(), 1u);
  ASSERT_EQ(sendPnp(stack.child, IRP_MN_START_DEVICE), STATUS_SUCCESS);
  ASSERT_EQ(sendPnp(stack.child, IRP_MN_REMOVE_DEVICE), STATUS_SUCCESS);
  ASSERT_TRUE(isListed(stack.driver(), stack.child));
  ASSERT_EQ(stack.removeBus(), STATUS_SUCCESS);
  EXPECT_FALSE(isListed(stack.driver(), stack.child));
}

TEST(BusPnp, AnotherDriversLoadStateKeepsTheBuses) {
  tChildStack stack;
  u32 const states[] = {1, 0, 7, 0};
  for (u32 state : states) {
    pkgSetWDMWrapperLoadStateAndGetGUID(state);
    EXPECT_EQ(stack.countRelations(), 1u);
  }
}

TEST(BusPnp, ASurpriseRemovalOnlyUnlinks) {
  tChildStack stack;
  ASSERT_EQ(stack.countRelations(), 1u);
  ASSERT_EQ(sendPnp(stack.bus(), IRP_MN_SURPRISE_REMOVAL), STATUS_SUCCESS);
  EXPECT_EQ(stack.record().parent, nullptr);
  EXPECT_EQ(stack.state(), tPnpState::NotStarted);
  ASSERT_TRUE(isListed(stack.driver(), stack.child));
  EXPECT_EQ(tDeviceRequest(stack.child, IRP_MJ_DEVICE_CONTROL).send(), STATUS_SUCCESS);
  ASSERT_EQ(stack.removeBus(), STATUS_SUCCESS);
  ASSERT_TRUE(isListed(stack.driver(), stack.child));
  ASSERT_EQ(sendPnp(stack.child, IRP_MN_REMOVE_DEVICE), STATUS_SUCCESS);
  EXPECT_FALSE(isListed(stack.driver(), stack.child));
}

TEST(BusPnp, ASurpriseRemovalEndsAChildThatTheSystemHasRemoved) {
  tChildStack stack;
  ASSERT_EQ(stack.countRelations(), 1u);
  ASSERT_EQ(sendPnp(stack.child, IRP_MN_START_DEVICE), STATUS_SUCCESS);
  ASSERT_EQ(sendPnp(stack.child, IRP_MN_REMOVE_DEVICE), STATUS_SUCCESS);
  ASSERT_EQ(sendPnp(stack.bus(), IRP_MN_SURPRISE_REMOVAL), STATUS_SUCCESS);
  EXPECT_FALSE(isListed(stack.driver(), stack.child));
}

TEST(BusPnp, AChildThatWasRemovedAndStartedAgainIsInUse) {
  tChildStack stack;
  ASSERT_EQ(stack.countRelations(), 1u);
  u8 const minors[] = {IRP_MN_START_DEVICE, IRP_MN_REMOVE_DEVICE, IRP_MN_START_DEVICE};
  for (u8 minor : minors) EXPECT_EQ(sendPnp(stack.child, minor), STATUS_SUCCESS);
  ASSERT_EQ(sendPnp(stack.bus(), IRP_MN_SURPRISE_REMOVAL), STATUS_SUCCESS);
  EXPECT_TRUE(isListed(stack.driver(), stack.child));
}

TEST(BusPnp, RelationsThatFailBelowTellNobody) {
  tChildStack stack;
  DEVICE_OBJECT* const child = stack.child;
  ASSERT_NE(child, nullptr);
  ObfReferenceObject(child);
  stack.floorStatus = STATUS_NO_SUCH_DEVICE;
  {
    tRelations request(stack.bus());
    EXPECT_EQ(request.send(), STATUS_NO_SUCH_DEVICE);
    EXPECT_EQ(request.completions(), 1);
    EXPECT_EQ(request.answer<void>(), nullptr);
  }
  EXPECT_FALSE(stack.record().isReported);
  i32 status = 0;
  stack.remove(7, status);
  EXPECT_EQ(status, 0);
  EXPECT_FALSE(isListed(stack.driver(), child));
  stack.floorStatus = STATUS_SUCCESS;
  ObfDereferenceObject(child);
}

TEST(BusPnp, RelationsThatFailBelowTakeNothingBackThatWasToldBefore) {
  tChildStack stack;
  ASSERT_EQ(stack.countRelations(), 1u);
  stack.floorStatus = STATUS_NO_SUCH_DEVICE;
  EXPECT_EQ(tRelations(stack.bus()).send(), STATUS_NO_SUCH_DEVICE);
  EXPECT_TRUE(stack.record().isReported);
  stack.floorStatus = STATUS_SUCCESS;
}

TEST(BusPnp, ASurpriseRemovalLetsTheChildrenGo) {
  tBusStack stack;
  stack.startBus();
  DEVICE_OBJECT* const started = stack.add(1, 1);
  sendPnp(started, IRP_MN_START_DEVICE);
  DEVICE_OBJECT* const unstarted = stack.add(2, 2);
  EXPECT_EQ(sendPnp(started, IRP_MN_SURPRISE_REMOVAL), STATUS_SUCCESS);
  ASSERT_EQ(sendPnp(stack.bus(), IRP_MN_SURPRISE_REMOVAL), STATUS_SUCCESS);
  EXPECT_EQ(stack.seenMinor, IRP_MN_SURPRISE_REMOVAL);
  EXPECT_FALSE(isListed(stack.driver(), unstarted));
  EXPECT_EQ(tChildStack::recordOf(started).parent, nullptr);
  ASSERT_EQ(stack.countRelations(), 0u);
  EXPECT_EQ(sendPnp(started, IRP_MN_REMOVE_DEVICE), STATUS_SUCCESS);
  EXPECT_FALSE(isListed(stack.driver(), started));
  ASSERT_EQ(stack.removeBus(), STATUS_SUCCESS);
}

TEST(BusPnp, ABusThatWasNeverStartedIsRemoved) {
  tBusStack stack;
  ASSERT_EQ(sendPnp(stack.bus(), IRP_MN_SURPRISE_REMOVAL), STATUS_SUCCESS);
  ASSERT_EQ(stack.removeBus(), STATUS_SUCCESS);
  EXPECT_EQ(stack.releases, 1);
}

TEST(BusPnp, OtherRequestsGoDown) {
  tBusStack stack;
  stack.startBus();
  u8 const minors[] = {IRP_MN_QUERY_REMOVE_DEVICE, IRP_MN_CANCEL_REMOVE_DEVICE,
                       IRP_MN_STOP_DEVICE,         IRP_MN_QUERY_STOP_DEVICE,
                       IRP_MN_CANCEL_STOP_DEVICE,  IRP_MN_QUERY_ID,
                       IRP_MN_QUERY_DEVICE_TEXT,   0x30};
  for (u8 minor : minors) {
    EXPECT_EQ(sendPnp(stack.bus(), minor), STATUS_SUCCESS);
    EXPECT_EQ(stack.seenMinor, minor);
  }
  EXPECT_EQ(stack.floorRequests, 9);
}

// What the dispatch routine returns is the status that the request is completed with.
TEST(BusPnp, WhatTheDevicesBelowSayIsReturned) {
  constexpr u8 kRead = 3;
  for (u32 isStarted = 0; isStarted < 2; ++isStarted) {
    tBusStack stack;
    ASSERT_NE(stack.bus(), nullptr);
    if (isStarted != 0) stack.startBus();
    stack.floorStatus = stack.otherStatus = STATUS_UNSUCCESSFUL;
    u8 const majors[] = {IRP_MJ_POWER, IRP_MJ_SYSTEM_CONTROL, kRead};
    for (u8 const major : majors) {
      tDeviceRequest request(stack.bus(), major, IRP_MN_QUERY_POWER);
      EXPECT_EQ(request.send(), STATUS_UNSUCCESSFUL);
      EXPECT_EQ(request.status(), STATUS_UNSUCCESSFUL);
    }
    tRelations others(stack.bus(), RemovalRelations);
    EXPECT_EQ(others.send(), STATUS_UNSUCCESSFUL);
    tDeviceRequest surprise(stack.bus(), IRP_MJ_PNP, IRP_MN_SURPRISE_REMOVAL);
    EXPECT_EQ(surprise.send(), STATUS_UNSUCCESSFUL);
    tDeviceRequest open(stack.bus(), IRP_MJ_CREATE);
    EXPECT_EQ(open.send(), STATUS_DELETE_PENDING);
    EXPECT_EQ(stack.removeBus(), STATUS_UNSUCCESSFUL);
    EXPECT_EQ(stack.releases, 1);
  }
}

TEST(BusPnp, ABusIsAsNewWhenItComesBack) {
  for (int round = 0; round < 3; ++round) {
    tBusStack stack;
    EXPECT_EQ(stack.startBus(), STATUS_SUCCESS);
    EXPECT_EQ(stack.countRelations(), 0u);
    EXPECT_NE(stack.add(1, 1), nullptr);
    EXPECT_EQ(stack.countRelations(), 1u);
  }
}
