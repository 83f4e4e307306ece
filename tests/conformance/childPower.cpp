// Power requests to a child.

#include "conformance/harness.h"
#include "support/tChildStack.h"

using namespace nOXDIAG100;

namespace {

class tPowerRequest : public tDeviceRequest {
 public:
  tPowerRequest(DEVICE_OBJECT* device, u8 minor, POWER_STATE_TYPE type, i32 state)
      : tDeviceRequest(device, IRP_MJ_POWER, minor) {
    location().Parameters.Power.Type = type;
    location().Parameters.Power.State.SystemState = static_cast<SYSTEM_POWER_STATE>(state);
  }
};

NTSTATUS setPower(DEVICE_OBJECT* device, POWER_STATE_TYPE type, i32 state) {
  tPowerRequest request(device, IRP_MN_SET_POWER, type, state);
  NTSTATUS const status = request.send();
  return request.completions() == 1 && request.status() == status ? status : STATUS_DISK_FULL;
}

bool takesControls(tChildStack& stack) {
  int const before = stack.handler.calls;
  return tDeviceRequest(stack.child, IRP_MJ_DEVICE_CONTROL).send() == STATUS_SUCCESS &&
         stack.handler.calls == before + 1;
}

}  // namespace

TEST(ChildPower, TheSystemsStateIsRecorded) {
  tChildStack const stack;
  for (i32 state = PowerSystemWorking; state <= PowerSystemShutdown; ++state) {
    EXPECT_EQ(setPower(stack.child, SystemPowerState, state), STATUS_SUCCESS);
    EXPECT_EQ(static_cast<i32>(stack.record().systemPower), state);
    EXPECT_EQ(stack.record().devicePower, PowerDeviceD3);
  }
}

TEST(ChildPower, TheDevicesStateIsRecorded) {
  tChildStack const stack;
  i32 const states[] = {PowerDeviceD0, PowerDeviceD1, PowerDeviceD2, PowerDeviceD3, PowerDeviceD0};
  for (i32 state : states) {
    EXPECT_EQ(setPower(stack.child, DevicePowerState, state), STATUS_SUCCESS);
    EXPECT_EQ(static_cast<i32>(stack.record().devicePower), state);
    EXPECT_EQ(stack.record().systemPower, PowerSystemWorking);
  }
}

TEST(ChildPower, AChildThatSleepsWakesAgain) {
  tChildStack stack;
  EXPECT_EQ(sendPnp(stack.child, IRP_MN_START_DEVICE), STATUS_SUCCESS);
  EXPECT_EQ(setPower(stack.child, DevicePowerState, PowerDeviceD3), STATUS_SUCCESS);
  EXPECT_TRUE(takesControls(stack));
  EXPECT_EQ(setPower(stack.child, DevicePowerState, PowerDeviceD0), STATUS_SUCCESS);
  EXPECT_TRUE(takesControls(stack));
}

TEST(ChildPower, EveryQueryIsAgreedTo) {
  tChildStack const stack;
  POWER_STATE_TYPE const types[] = {SystemPowerState, DevicePowerState};
  for (POWER_STATE_TYPE type : types) {
    for (i32 state = 0; state <= PowerSystemShutdown; ++state) {
      tPowerRequest request(stack.child, IRP_MN_QUERY_POWER, type, state);
      EXPECT_EQ(request.send(), STATUS_SUCCESS);
      EXPECT_EQ(request.completions(), 1);
    }
  }
  EXPECT_EQ(stack.record().systemPower, PowerSystemWorking);
  EXPECT_EQ(stack.record().devicePower, PowerDeviceD3);
}

TEST(ChildPower, OtherKindsKeepTheStatus) {
  tChildStack const stack;
  u8 const minors[] = {IRP_MN_WAIT_WAKE, IRP_MN_POWER_SEQUENCE, 4, 0xFF};
  for (u8 minor : minors) {
    NTSTATUS const statuses[] = {STATUS_NOT_SUPPORTED, STATUS_SUCCESS, STATUS_DISK_FULL};
    for (NTSTATUS status : statuses) {
      tPowerRequest request(stack.child, minor, DevicePowerState, PowerDeviceD0);
      EXPECT_EQ(request.sendPastTheKernel(status), status);
      EXPECT_EQ(request.completions(), 1);
      EXPECT_EQ(request.status(), status);
    }
  }
  EXPECT_EQ(stack.record().devicePower, PowerDeviceD3);
}

TEST(ChildPower, AnUnknownTypeLeavesTheStatus) {
  tChildStack const stack;
  NTSTATUS const statuses[] = {STATUS_NOT_SUPPORTED, STATUS_DISK_FULL};
  for (NTSTATUS status : statuses) {
    tPowerRequest request(stack.child, IRP_MN_SET_POWER, static_cast<POWER_STATE_TYPE>(2), 1);
    EXPECT_EQ(request.sendPastTheKernel(status), status);
    EXPECT_EQ(request.status(), status);
  }
  EXPECT_EQ(stack.record().devicePower, PowerDeviceD3);
  EXPECT_EQ(stack.record().systemPower, PowerSystemWorking);
}
