#pragma once

#include "ntos/device.h"
#include "ntos/status.h"

// Power states and the requests about them.

enum SYSTEM_POWER_STATE : i32 {
  PowerSystemUnspecified = 0,
  PowerSystemWorking = 1,
  PowerSystemSleeping1 = 2,
  PowerSystemSleeping2 = 3,
  PowerSystemSleeping3 = 4,
  PowerSystemHibernate = 5,
  PowerSystemShutdown = 6,
};
constexpr u32 kPowerSystemMaximum = 7;  // how many system states there are

enum DEVICE_POWER_STATE : i32 {
  PowerDeviceUnspecified = 0,
  PowerDeviceD0 = 1,  // on
  PowerDeviceD1 = 2,
  PowerDeviceD2 = 3,
  PowerDeviceD3 = 4,  // off
};

union POWER_STATE {
  SYSTEM_POWER_STATE SystemState;
  DEVICE_POWER_STATE DeviceState;
};
static_assert(sizeof(POWER_STATE) == 4);

enum POWER_STATE_TYPE : i32 { SystemPowerState = 0, DevicePowerState = 1 };

// Minor codes of IRP_MJ_POWER.
constexpr u8 IRP_MN_WAIT_WAKE = 0x00;
constexpr u8 IRP_MN_POWER_SEQUENCE = 0x01;
constexpr u8 IRP_MN_SET_POWER = 0x02;
constexpr u8 IRP_MN_QUERY_POWER = 0x03;

extern "C" {

// Tells the power manager which state a device has entered or is about to leave. Returns the state
// before. IRQL <= DISPATCH_LEVEL.
NTOS_IMPORT POWER_STATE PoSetPowerState(DEVICE_OBJECT* device, POWER_STATE_TYPE type,
                                        POWER_STATE state);

// Ready for the next power request: called before this one is completed or passed on.
// IRQL <= DISPATCH_LEVEL.
NTOS_IMPORT void PoStartNextPowerIrp(IRP* request);

// Passes a power request to a lower device, as IoCallDriver does others. IRQL <= DISPATCH_LEVEL.
NTOS_IMPORT NTSTATUS PoCallDriver(DEVICE_OBJECT* device, IRP* request);
}
