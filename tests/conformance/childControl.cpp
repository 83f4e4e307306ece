// Device controls to a child.

#include "conformance/harness.h"
#include "support/tChildStack.h"

using namespace nOXDIAG100;

namespace {

constexpr u32 kCode = ntosControlCode(0x8000, 0x800, METHOD_NEITHER, FILE_ANY_ACCESS);

class tControl : public tDeviceRequest {
 public:
  explicit tControl(DEVICE_OBJECT* device, u8 major = IRP_MJ_DEVICE_CONTROL)
      : tDeviceRequest(device, major) {
    auto& control = location().Parameters.DeviceIoControl;
    control.IoControlCode = kCode;
    control.Type3InputBuffer = &input;
    control.InputBufferLength = 11;
    control.OutputBufferLength = 22;
    irp->UserBuffer = &output;
    ioStatus().Information = 999;
  }

  char input = 0;
  char output = 0;
};

}  // namespace

TEST(ChildControl, TheHandlerGetsTheCallersBuffers) {
  tChildStack stack;
  u8 const majors[] = {IRP_MJ_DEVICE_CONTROL, IRP_MJ_INTERNAL_DEVICE_CONTROL};
  for (u8 major : majors) {
    tControl control(stack.child, major);
    EXPECT_EQ(control.send(), STATUS_SUCCESS);
    EXPECT_EQ(control.completions(), 1);
    EXPECT_EQ(stack.handler.code, kCode);
    EXPECT_EQ(stack.handler.input, &control.input);
    EXPECT_EQ(stack.handler.inputLength, 11u);
    EXPECT_EQ(stack.handler.output, &control.output);
    EXPECT_EQ(stack.handler.outputLength, 22u);
    EXPECT_TRUE(stack.handler.wasClear);
  }
  EXPECT_EQ(stack.handler.calls, 2);
}

TEST(ChildControl, WhatItGivesBackIsStored) {
  tChildStack stack;
  stack.handler.information = 0x123456789;
  tControl control(stack.child);
  EXPECT_EQ(control.send(), STATUS_SUCCESS);
  EXPECT_EQ(control.status(), STATUS_SUCCESS);
  EXPECT_EQ(control.ioStatus().Information, 0x123456789u);
}

TEST(ChildControl, AFailureIsUnsuccessful) {
  tChildStack stack;
  i32 const statuses[] = {-1, -50352, static_cast<i32>(0x80000000)};
  for (i32 status : statuses) {
    stack.handler.status = status;
    stack.handler.information = 5;
    tControl control(stack.child);
    EXPECT_EQ(control.send(), STATUS_UNSUCCESSFUL);
    EXPECT_EQ(control.status(), STATUS_UNSUCCESSFUL);
    EXPECT_EQ(control.ioStatus().Information, 5u);
  }
}

TEST(ChildControl, AWarningIsASuccess) {
  tChildStack stack;
  stack.handler.status = 1;
  tControl control(stack.child);
  EXPECT_EQ(control.send(), STATUS_SUCCESS);
  EXPECT_EQ(control.status(), STATUS_SUCCESS);
}

TEST(ChildControl, EveryStateServes) {
  tChildStack stack;
  u8 const minors[] = {IRP_MN_START_DEVICE,        IRP_MN_QUERY_STOP_DEVICE, IRP_MN_STOP_DEVICE,
                       IRP_MN_QUERY_REMOVE_DEVICE, IRP_MN_SURPRISE_REMOVAL,  IRP_MN_REMOVE_DEVICE};
  for (u8 minor : minors) {
    sendPnp(stack.child, minor);
    EXPECT_EQ(tControl(stack.child).send(), STATUS_SUCCESS);
  }
  EXPECT_EQ(stack.handler.calls, 6);
}

TEST(ChildControl, AChildThatWasTakenAwayServesNoMore) {
  tChildStack stack;
  ASSERT_EQ(stack.countRelations(), 1u);
  i32 status = 0;
  stack.remove(7, status);
  EXPECT_EQ(status, 0);
  tControl control(stack.child);
  EXPECT_EQ(control.send(), STATUS_DELETE_PENDING);
  EXPECT_EQ(control.completions(), 1);
  EXPECT_EQ(control.ioStatus().Information, 0u);
  EXPECT_EQ(stack.handler.calls, 0);
}
