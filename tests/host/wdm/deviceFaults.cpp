// Buses and children with exhausted memory: every call that can fail does so in turn.

#include <gtest/gtest.h>

#include <memory>

#include "ntos/pnp.h"
#include "ntoshost/devices.h"
#include "support/tChildStack.h"
#include "trace/startedModules.h"
#include "vexk/statusCodes.h"

namespace {

using namespace nOXDIAG100;

constexpr u32 kFaults = ntoshost::kFaultMemory | ntoshost::kFaultDevice | ntoshost::kFaultRequest;

tDeviceRequest* tellRelations(DEVICE_OBJECT* device, DEVICE_RELATION_TYPE type) {
  auto* const request = new tDeviceRequest(device, IRP_MJ_PNP, IRP_MN_QUERY_DEVICE_RELATIONS);
  request->location().Parameters.QueryDeviceRelations.Type = type;
  return request;
}

// Sends the request with each fallible call failing in turn; then it is to end with this status and
// without an answer. Returns the status of the run in which nothing failed.
template <class Make>
NTSTATUS failEach(Make make, NTSTATUS wanted) {
  NTSTATUS last = STATUS_DISK_FULL;
  u64 const blocks = ntoshost::outstandingBlocks();
  u64 const failures = ntoshost::failEachCall(kFaults, [&](u64 n) {
    ntoshost::clearFaults();
    std::unique_ptr<tDeviceRequest> const request(make());
    ntoshost::failNth(kFaults, n);
    last = request->send();
    ntoshost::clearFaults();
    EXPECT_EQ(request->completions(), 1);
    EXPECT_EQ(last, request->status());
    if (ntoshost::faultsInjected() != 0) {
      EXPECT_EQ(last, wanted);
      EXPECT_EQ(request->ioStatus().Information, 0u);
    }
    if (request->location().MinorFunction == IRP_MN_QUERY_DEVICE_RELATIONS) {
      request->freeRelations();
    } else {
      request->freeAnswer();
    }
  });
  EXPECT_GE(failures, 1u);
  EXPECT_EQ(ntoshost::outstandingBlocks(), blocks);
  return last;
}

template <class Fill>
NTSTATUS failEachQuery(DEVICE_OBJECT* device, u8 minor, NTSTATUS wanted, Fill fill) {
  return failEach(
      [&] {
        auto* const request = new tDeviceRequest(device, IRP_MJ_PNP, minor);
        fill(request->location());
        return request;
      },
      wanted);
}

}  // namespace

TEST(DeviceFaults, ACreationThatFailsLeavesNothing) {
  tBusStack stack;
  stack.startBus();
  tTestChild const child(stack.handler, 1, 1);
  u64 const blocks = ntoshost::outstandingBlocks();
  u64 const devices = ntoshost::countDevices().devices;
  i32 last = 0;
  u64 const failures = ntoshost::failEachCall(kFaults, [&](u64) {
    last = stack.create(child.description);
    ntoshost::clearFaults();
    if (ntoshost::faultsInjected() == 0) return;
    EXPECT_EQ(last, kStatusOutOfMemory);
    EXPECT_EQ(ntoshost::outstandingBlocks(), blocks);
    EXPECT_EQ(ntoshost::countDevices().devices, devices);
  });
  EXPECT_EQ(failures, 3u);  // the ids, the description, the device
  EXPECT_EQ(last, 0);
  EXPECT_EQ(stack.countRelations(), 1u);
}

TEST(DeviceFaults, AStartThatFailsLeavesNothing) {
  tBusStack stack;
  tDeviceRequest request(stack.bus(), IRP_MJ_PNP, IRP_MN_START_DEVICE);
  u64 const blocks = ntoshost::outstandingBlocks();
  ntoshost::failNth(ntoshost::kFaultMemory, 1);
  EXPECT_EQ(request.send(), STATUS_INSUFFICIENT_RESOURCES);
  ntoshost::clearFaults();
  EXPECT_EQ(ntoshost::faultsInjected(), 1u);
  EXPECT_EQ(request.completions(), 1);
  EXPECT_EQ(stack.starts, 0);
  EXPECT_EQ(stack.floorRequests, 0);
  EXPECT_EQ(ntoshost::outstandingBlocks(), blocks);
  EXPECT_EQ(stack.startBus(), STATUS_SUCCESS);
  EXPECT_NE(stack.children, nullptr);
}

TEST(DeviceFaults, RelationsThatFailChangeNothing) {
  tBusStack stack;
  stack.startBus();
  DEVICE_OBJECT* const gone = stack.add(1, 1);
  stack.add(2, 2);
  EXPECT_EQ(stack.countRelations(), 2u);
  i32 status = 0;
  stack.children->removeChild(1, status);
  int const before = stack.floorRequests;
  {
    std::unique_ptr<tDeviceRequest> const request(tellRelations(stack.bus(), BusRelations));
    ntoshost::failNth(ntoshost::kFaultMemory, 1);
    EXPECT_EQ(request->send(), STATUS_INSUFFICIENT_RESOURCES);
    ntoshost::clearFaults();
    EXPECT_EQ(request->ioStatus().Information, 0u);
    EXPECT_EQ(stack.floorRequests, before);
  }
  EXPECT_NE(tChildStack::recordOf(gone).parent, nullptr);
  EXPECT_EQ(stack.countRelations(), 1u);
  EXPECT_EQ(tChildStack::recordOf(gone).parent, nullptr);
  EXPECT_EQ(sendPnp(gone, IRP_MN_REMOVE_DEVICE), STATUS_SUCCESS);
}

TEST(DeviceFaults, RelationsThatFailForMemoryLeaveNoReference) {
  tBusStack stack;
  stack.startBus();
  DEVICE_OBJECT* const child = stack.add(1, 1);
  u64 const failures = ntoshost::failEachCall(ntoshost::kFaultMemory, [&](u64 n) {
    ntoshost::clearFaults();
    std::unique_ptr<tDeviceRequest> const request(tellRelations(stack.bus(), BusRelations));
    u64 const blocks = ntoshost::outstandingBlocks();
    auto* const list = static_cast<DEVICE_RELATIONS*>(
        ExAllocatePoolWithTag(PagedPool, sizeof(DEVICE_RELATIONS), ntosPoolTag("test")));
    list->Count = 1;
    list->Objects[0] = stack.floor();
    ObfReferenceObject(stack.floor());
    request->ioStatus().Information = reinterpret_cast<u64>(list);
    u64 const references = ntoshost::referencesOn(stack.floor());
    ntoshost::failNth(ntoshost::kFaultMemory, n);
    request->send();
    ntoshost::clearFaults();
    if (ntoshost::faultsInjected() == 0) return request->freeRelations();
    EXPECT_EQ(request->status(), STATUS_INSUFFICIENT_RESOURCES);
    EXPECT_EQ(request->ioStatus().Information, 0u);
    EXPECT_EQ(ntoshost::referencesOn(stack.floor()), references - 1);
    EXPECT_EQ(ntoshost::referencesOn(child), 0u);
    EXPECT_EQ(ntoshost::outstandingBlocks(), blocks);
    EXPECT_FALSE(tChildStack::recordOf(child).isReported);
  });
  EXPECT_EQ(failures, 2u);  // which children are told of, and the list
}

TEST(DeviceFaults, AnswersThatFailSaySo) {
  tChildStack const stack;
  for (BUS_QUERY_ID_TYPE type : {BusQueryDeviceID, BusQueryHardwareIDs, BusQueryInstanceID}) {
    NTSTATUS const last =
        failEachQuery(stack.child, IRP_MN_QUERY_ID, STATUS_INSUFFICIENT_RESOURCES,
                      [&](IO_STACK_LOCATION& at) { at.Parameters.QueryId.IdType = type; });
    EXPECT_EQ(last, STATUS_SUCCESS);
  }
  EXPECT_EQ(failEachQuery(stack.child, IRP_MN_QUERY_BUS_INFORMATION, STATUS_INSUFFICIENT_RESOURCES,
                          [](IO_STACK_LOCATION&) {}),
            STATUS_SUCCESS);
  EXPECT_EQ(failEach([&] { return tellRelations(stack.child, TargetDeviceRelation); },
                     STATUS_INSUFFICIENT_RESOURCES),
            STATUS_SUCCESS);
  EXPECT_EQ(ntoshost::referencesOn(stack.child), 0u);
}

TEST(DeviceFaults, TextsThatFailKeepTheStatus) {
  tChildStack const stack;
  for (DEVICE_TEXT_TYPE type : {DeviceTextDescription, DeviceTextLocationInformation}) {
    NTSTATUS const last = failEachQuery(
        stack.child, IRP_MN_QUERY_DEVICE_TEXT, STATUS_NOT_SUPPORTED,
        [&](IO_STACK_LOCATION& at) { at.Parameters.QueryDeviceText.DeviceTextType = type; });
    EXPECT_EQ(last, STATUS_SUCCESS);
  }
}

TEST(DeviceFaults, CapabilitiesThatFailSaySo) {
  tChildStack const stack;
  DEVICE_CAPABILITIES capabilities = {};
  capabilities.Size = sizeof(capabilities);
  capabilities.Version = 1;
  NTSTATUS const last = failEachQuery(stack.child, IRP_MN_QUERY_CAPABILITIES,
                                      STATUS_INSUFFICIENT_RESOURCES, [&](IO_STACK_LOCATION& at) {
                                        at.Parameters.DeviceCapabilities.Capabilities =
                                            &capabilities;
                                      });
  EXPECT_EQ(last, STATUS_SUCCESS);
  EXPECT_EQ(capabilities.Address, 7u);
}
