// What becomes of the requests to the platform's own device of a stack.

#include "conformance/harness.h"
#include "ntos/io.h"
#include "ntos/pnp.h"
#include "ntos/pool.h"
#include "support/tFunctionStack.h"
#include "vexk/statusCodes.h"

namespace {

constexpr u32 kListTag = ntosPoolTag("test");
constexpr u32 kDirect = 1;  // a method that the platform does not serve
constexpr u8 kUnknownMinor = 0x7F;
constexpr u8 kRead = 3;  // a major code that nobody here serves

u32 codeOf(u32 method) {
  return ntosControlCode(0x8123, 0x812, method, FILE_ANY_ACCESS);
}

// A device control with addresses that nobody looks at.
class tControl : public tDeviceRequest {
 public:
  tControl(tFunctionStack const& stack, u32 code, u32 major = IRP_MJ_DEVICE_CONTROL)
      : tDeviceRequest(stack.getDevice(), static_cast<u8>(major)) {
    auto& parameters = location().Parameters.DeviceIoControl;
    parameters.IoControlCode = code;
    parameters.InputBufferLength = 11;
    parameters.OutputBufferLength = 22;
    parameters.Type3InputBuffer = &input;
    irp->UserBuffer = &output;
    irp->AssociatedIrp.SystemBuffer = &system;
    irp->IoStatus.Information = 99;
  }
  ~tControl() { irp->AssociatedIrp.SystemBuffer = nullptr; }

  NTSTATUS sendForStatus() {
    send();
    return status();
  }

  char input = 0;
  char output = 0;
  char system = 0;
};

NTSTATUS controlOf(tFunctionStack const& stack) {
  return tControl(stack, codeOf(METHOD_NEITHER)).sendForStatus();
}

// Takes a request to the device that is completed once, and returns with what it is completed with.
NTSTATUS statusOf(tDeviceRequest& request) {
  NTSTATUS const returned = request.send();
  EXPECT_EQ(request.completions(), 1);
  EXPECT_EQ(request.status(), returned);
  return returned;
}

// The relations of the bus, with a list of another driver's that has the device `listed`.
class tRelationsRequest : public tDeviceRequest {
 public:
  tRelationsRequest(tFunctionStack const& stack, DEVICE_OBJECT* listed)
      : tDeviceRequest(stack.getDevice(), IRP_MJ_PNP, IRP_MN_QUERY_DEVICE_RELATIONS) {
    location().Parameters.QueryDeviceRelations.Type = BusRelations;
    list = static_cast<DEVICE_RELATIONS*>(
        ExAllocatePoolWithTag(PagedPool, sizeof(DEVICE_RELATIONS), kListTag));
    if (list == nullptr) return;
    ObfReferenceObject(listed);
    list->Count = 1;
    list->Objects[0] = listed;
    ioStatus().Information = reinterpret_cast<u64>(list);
  }
  ~tRelationsRequest() {
    if (answer<DEVICE_RELATIONS>() != list || list == nullptr) return;
    ObfDereferenceObject(list->Objects[0]);
    ExFreePoolWithTag(list, kListTag);
  }

  DEVICE_RELATIONS* list;
};

// While the removal of the device is at the floor: every other request finds the device closed.
void expectRefusals(tFunctionStack& stack) {
  constexpr u8 kMinors[] = {IRP_MN_START_DEVICE,        IRP_MN_STOP_DEVICE,
                            IRP_MN_REMOVE_DEVICE,       IRP_MN_SURPRISE_REMOVAL,
                            IRP_MN_QUERY_REMOVE_DEVICE, IRP_MN_QUERY_CAPABILITIES};
  for (u8 const minor : kMinors) {
    tDeviceRequest request(stack.getDevice(), IRP_MJ_PNP, minor);
    EXPECT_EQ(statusOf(request), STATUS_DELETE_PENDING);
  }
  constexpr u8 kMajors[] = {IRP_MJ_POWER, IRP_MJ_SYSTEM_CONTROL, kRead};
  for (u8 const major : kMajors) {
    tDeviceRequest request(stack.getDevice(), major, IRP_MN_QUERY_POWER);
    EXPECT_EQ(statusOf(request), STATUS_DELETE_PENDING);
  }
  tControl control(stack, codeOf(METHOD_NEITHER));
  EXPECT_EQ(statusOf(control), STATUS_DELETE_PENDING);
  EXPECT_EQ(control.ioStatus().Information, u64{0});
  tRelationsRequest relations(stack, stack.getFloor());
  EXPECT_EQ(statusOf(relations), STATUS_DELETE_PENDING);
  EXPECT_EQ(relations.ioStatus().Information, u64{0});
}

}  // namespace

TEST(VexkDispatch, OpenCleanupAndCloseSucceed) {
  tFunctionStack stack;
  EXPECT_EQ(stack.send(IRP_MJ_CREATE), STATUS_SUCCESS);
  EXPECT_EQ(stack.send(IRP_MJ_CLEANUP), STATUS_SUCCESS);
  EXPECT_EQ(stack.send(IRP_MJ_CLOSE), STATUS_SUCCESS);
  EXPECT_STREQ(stack.component.getCalls(), "");
}

TEST(VexkDispatch, ADeviceThatIsGoneIsNotOpenedButClosed) {
  tFunctionStack stack;
  stack.sendPnp(IRP_MN_SURPRISE_REMOVAL);
  EXPECT_EQ(stack.send(IRP_MJ_CREATE), STATUS_DELETE_PENDING);
  EXPECT_EQ(stack.send(IRP_MJ_CLEANUP), STATUS_SUCCESS);
  EXPECT_EQ(stack.send(IRP_MJ_CLOSE), STATUS_SUCCESS);
}

TEST(VexkDispatch, ControlsOfMethodNeitherBringTheCallersAddresses) {
  tFunctionStack stack;
  stack.sendPnp(IRP_MN_START_DEVICE);
  stack.component.controlInformation = 5;
  tControl control(stack, codeOf(METHOD_NEITHER));
  EXPECT_EQ(control.sendForStatus(), STATUS_SUCCESS);
  EXPECT_EQ(control.irp->IoStatus.Information, u64{5});
  EXPECT_EQ(stack.component.code, codeOf(METHOD_NEITHER));
  EXPECT_TRUE(stack.component.input == &control.input);
  EXPECT_TRUE(stack.component.output == &control.output);
  EXPECT_EQ(stack.component.inputLength, u32{11});
  EXPECT_EQ(stack.component.outputLength, u32{22});
  EXPECT_TRUE(stack.component.wasClear);
}

TEST(VexkDispatch, BufferedControlsBringTheKernelsCopy) {
  tFunctionStack stack;
  stack.sendPnp(IRP_MN_START_DEVICE);
  tControl control(stack, codeOf(METHOD_BUFFERED), IRP_MJ_INTERNAL_DEVICE_CONTROL);
  EXPECT_EQ(control.sendForStatus(), STATUS_SUCCESS);
  EXPECT_TRUE(stack.component.input == &control.system);
  EXPECT_TRUE(stack.component.output == &control.system);
}

TEST(VexkDispatch, ControlsOfOtherMethodsAreRefused) {
  tFunctionStack stack;
  stack.sendPnp(IRP_MN_START_DEVICE);
  tControl control(stack, codeOf(kDirect));
  EXPECT_EQ(control.sendForStatus(), STATUS_INVALID_DEVICE_REQUEST);
  EXPECT_EQ(control.irp->IoStatus.Information, u64{0});
  EXPECT_STREQ(stack.component.getCalls(), "FS");
}

TEST(VexkDispatch, AFailedControlIsUnsuccessfulAndKeepsItsInformation) {
  tFunctionStack stack;
  stack.sendPnp(IRP_MN_START_DEVICE);
  stack.component.controlStatus = kStatusBadArgument;
  stack.component.controlInformation = 7;
  tControl control(stack, codeOf(METHOD_NEITHER));
  EXPECT_EQ(control.sendForStatus(), STATUS_UNSUCCESSFUL);
  EXPECT_EQ(control.irp->IoStatus.Information, u64{7});
}

TEST(VexkDispatch, InformationBeyondTheOutputIsCut) {
  constexpr u32 kMethods[] = {METHOD_BUFFERED, METHOD_NEITHER};
  constexpr u64 kGiven[] = {22, 23, ~u64{0}};
  for (u32 const method : kMethods) {
    tFunctionStack stack;
    stack.sendPnp(IRP_MN_START_DEVICE);
    for (u64 const information : kGiven) {
      stack.component.controlInformation = information;
      tControl control(stack, codeOf(method));
      EXPECT_EQ(control.sendForStatus(), STATUS_SUCCESS);
      EXPECT_EQ(control.irp->IoStatus.Information, u64{22});
    }
  }
}

TEST(VexkDispatch, AfterASurpriseWhatIsNeitherOpenNorControlGoesDown) {
  tFunctionStack stack;
  stack.sendPnp(IRP_MN_START_DEVICE);
  stack.sendPnp(IRP_MN_SURPRISE_REMOVAL);
  stack.seenMinor = 0;
  EXPECT_EQ(stack.sendPnp(kUnknownMinor), stack.floorStatus);
  EXPECT_EQ(stack.seenMinor, kUnknownMinor);
  EXPECT_EQ(controlOf(stack), STATUS_DELETE_PENDING);
}

TEST(VexkDispatch, ControlsAreServedWhileTheDeviceIsStartedOnly) {
  tFunctionStack stack;
  EXPECT_EQ(controlOf(stack), STATUS_DEVICE_NOT_READY);
  stack.component.startStatus = kStatusBadArgument;
  stack.sendPnp(IRP_MN_START_DEVICE);
  EXPECT_EQ(controlOf(stack), STATUS_DEVICE_NOT_READY);
  stack.component.startStatus = 0;
  stack.sendPnp(IRP_MN_START_DEVICE);
  EXPECT_EQ(controlOf(stack), STATUS_SUCCESS);
  stack.sendPnp(IRP_MN_STOP_DEVICE);
  EXPECT_EQ(controlOf(stack), STATUS_DEVICE_NOT_READY);
  stack.sendPnp(IRP_MN_START_DEVICE);
  EXPECT_EQ(controlOf(stack), STATUS_SUCCESS);
  stack.sendPnp(IRP_MN_SURPRISE_REMOVAL);
  EXPECT_EQ(controlOf(stack), STATUS_DELETE_PENDING);
  EXPECT_STREQ(stack.component.getCalls(), "FSFScFFScxF");
}

TEST(VexkDispatch, AStopBehindASurpriseBringsNothingBack) {
  tFunctionStack stack;
  stack.sendPnp(IRP_MN_START_DEVICE);
  stack.sendPnp(IRP_MN_SURPRISE_REMOVAL);
  stack.sendPnp(IRP_MN_STOP_DEVICE);
  EXPECT_EQ(controlOf(stack), STATUS_DELETE_PENDING);
}

TEST(VexkDispatch, PowerSystemControlAndTheRestGoDown) {
  tFunctionStack stack;
  stack.floorStatus = STATUS_NOT_SUPPORTED;
  EXPECT_EQ(stack.send(IRP_MJ_POWER, IRP_MN_QUERY_POWER), STATUS_NOT_SUPPORTED);
  EXPECT_EQ(stack.seenMajor, IRP_MJ_POWER);
  EXPECT_EQ(stack.send(IRP_MJ_SYSTEM_CONTROL), STATUS_NOT_SUPPORTED);
  EXPECT_EQ(stack.seenMajor, IRP_MJ_SYSTEM_CONTROL);
  EXPECT_EQ(stack.send(kRead), STATUS_NOT_SUPPORTED);
  EXPECT_EQ(stack.seenMajor, kRead);
  EXPECT_STREQ(stack.component.getCalls(), "FFF");
}

TEST(VexkDispatch, WhatTheDeviceAgreesToGoesDownAsASuccess) {
  constexpr u8 kAgreed[] = {IRP_MN_QUERY_REMOVE_DEVICE, IRP_MN_CANCEL_REMOVE_DEVICE,
                            IRP_MN_QUERY_STOP_DEVICE, IRP_MN_CANCEL_STOP_DEVICE,
                            IRP_MN_STOP_DEVICE};
  tFunctionStack stack;
  for (u8 const minor : kAgreed) {
    EXPECT_EQ(stack.sendPnp(minor), STATUS_SUCCESS);
    EXPECT_EQ(stack.seenMinor, minor);
    EXPECT_EQ(stack.seenStatus, STATUS_SUCCESS);
  }
}

TEST(VexkDispatch, TheDevicesBelowMayRefuse) {
  tFunctionStack stack;
  stack.floorStatus = STATUS_UNSUCCESSFUL;
  EXPECT_EQ(stack.sendPnp(IRP_MN_QUERY_REMOVE_DEVICE), STATUS_UNSUCCESSFUL);
}

TEST(VexkDispatch, WhatTheDevicesBelowSayIsReturned) {
  constexpr u8 kMinors[] = {IRP_MN_STOP_DEVICE, IRP_MN_SURPRISE_REMOVAL, IRP_MN_QUERY_STOP_DEVICE,
                            IRP_MN_REMOVE_DEVICE};
  tFunctionStack stack;
  stack.sendPnp(IRP_MN_START_DEVICE);
  stack.floorStatus = STATUS_UNSUCCESSFUL;
  for (u8 const minor : kMinors) {
    stack.seenStatus = STATUS_PENDING;
    tDeviceRequest request(stack.getDevice(), IRP_MJ_PNP, minor);
    EXPECT_EQ(statusOf(request), STATUS_UNSUCCESSFUL);
    EXPECT_EQ(stack.seenMinor, minor);
    EXPECT_EQ(stack.seenStatus, STATUS_SUCCESS);
  }
}

TEST(VexkDispatch, RequestsBesideTheRemovalAreRefused) {
  tFunctionStack stack;
  ASSERT_EQ(stack.sendPnp(IRP_MN_START_DEVICE), STATUS_SUCCESS);
  stack.atFloor = expectRefusals;
  EXPECT_EQ(stack.sendPnp(IRP_MN_REMOVE_DEVICE), STATUS_SUCCESS);
  EXPECT_STREQ(stack.component.getCalls(), "FSsFr");
  EXPECT_FALSE(stack.hasDevice());
}

TEST(VexkDispatch, OfRelationsThatFailBelowTheListIsGivenBack) {
  tFunctionStack stack;
  ASSERT_EQ(stack.sendPnp(IRP_MN_START_DEVICE), STATUS_SUCCESS);
  stack.floorStatus = STATUS_UNSUCCESSFUL;
  tRelationsRequest relations(stack, stack.getFloor());
  EXPECT_EQ(statusOf(relations), STATUS_UNSUCCESSFUL);
  EXPECT_EQ(relations.ioStatus().Information, u64{0});
}

TEST(VexkDispatch, OfRelationsThatFailBelowWhatStandsForTheListThereStays) {
  static IO_STATUS_BLOCK* below;
  tFunctionStack stack;
  ASSERT_EQ(stack.sendPnp(IRP_MN_START_DEVICE), STATUS_SUCCESS);
  stack.floorStatus = STATUS_UNSUCCESSFUL;
  tRelationsRequest relations(stack, stack.getFloor());
  ASSERT_NE(relations.list, nullptr);
  below = &relations.ioStatus();
  stack.atFloor = [](tFunctionStack& reached) {
    ObfDereferenceObject(reached.getFloor());
    ExFreePoolWithTag(reinterpret_cast<void*>(below->Information), kListTag);
    below->Information = 1;
  };
  EXPECT_EQ(statusOf(relations), STATUS_UNSUCCESSFUL);
  stack.atFloor = nullptr;  // the request may not have come there
  EXPECT_EQ(relations.ioStatus().Information, u64{1});
}

TEST(VexkDispatch, OfRelationsThatSucceedBelowTheListStays) {
  tFunctionStack stack;
  ASSERT_EQ(stack.sendPnp(IRP_MN_START_DEVICE), STATUS_SUCCESS);
  tRelationsRequest relations(stack, stack.getFloor());
  EXPECT_EQ(statusOf(relations), STATUS_SUCCESS);
  EXPECT_TRUE(relations.list != nullptr && relations.answer<DEVICE_RELATIONS>() == relations.list);
}

TEST(VexkDispatch, RelationsOfAnotherKindGoDownAsTheyAre) {
  tFunctionStack stack;
  ASSERT_EQ(stack.sendPnp(IRP_MN_START_DEVICE), STATUS_SUCCESS);
  stack.floorStatus = STATUS_UNSUCCESSFUL;
  tRelationsRequest relations(stack, stack.getFloor());
  relations.location().Parameters.QueryDeviceRelations.Type = RemovalRelations;
  EXPECT_EQ(statusOf(relations), STATUS_UNSUCCESSFUL);
  EXPECT_TRUE(relations.list != nullptr && relations.answer<DEVICE_RELATIONS>() == relations.list);
}

TEST(VexkDispatch, OtherPlugAndPlayRequestsGoDownAsTheyAre) {
  constexpr u8 kOthers[] = {IRP_MN_QUERY_CAPABILITIES, IRP_MN_QUERY_INTERFACE, kUnknownMinor};
  tFunctionStack stack;
  stack.floorStatus = STATUS_UNSUCCESSFUL;
  for (u8 const minor : kOthers) {
    EXPECT_EQ(stack.sendPnp(minor), STATUS_UNSUCCESSFUL);
    EXPECT_EQ(stack.seenStatus, STATUS_NOT_SUPPORTED);
    EXPECT_EQ(stack.seenMinor, minor);
  }
}
