#pragma once

#include "ntos/device.h"
#include "ntos/guid.h"
#include "ntos/power.h"

// What plug-and-play requests carry, and the calls around them.

// Minor codes of IRP_MJ_PNP.
constexpr u8 IRP_MN_START_DEVICE = 0x00;
constexpr u8 IRP_MN_QUERY_REMOVE_DEVICE = 0x01;
constexpr u8 IRP_MN_REMOVE_DEVICE = 0x02;
constexpr u8 IRP_MN_CANCEL_REMOVE_DEVICE = 0x03;
constexpr u8 IRP_MN_STOP_DEVICE = 0x04;
constexpr u8 IRP_MN_QUERY_STOP_DEVICE = 0x05;
constexpr u8 IRP_MN_CANCEL_STOP_DEVICE = 0x06;
constexpr u8 IRP_MN_QUERY_DEVICE_RELATIONS = 0x07;
constexpr u8 IRP_MN_QUERY_INTERFACE = 0x08;
constexpr u8 IRP_MN_QUERY_CAPABILITIES = 0x09;
constexpr u8 IRP_MN_QUERY_RESOURCES = 0x0A;
constexpr u8 IRP_MN_QUERY_RESOURCE_REQUIREMENTS = 0x0B;
constexpr u8 IRP_MN_QUERY_DEVICE_TEXT = 0x0C;
constexpr u8 IRP_MN_FILTER_RESOURCE_REQUIREMENTS = 0x0D;
constexpr u8 IRP_MN_QUERY_ID = 0x13;
constexpr u8 IRP_MN_QUERY_PNP_DEVICE_STATE = 0x14;
constexpr u8 IRP_MN_QUERY_BUS_INFORMATION = 0x15;
constexpr u8 IRP_MN_DEVICE_USAGE_NOTIFICATION = 0x16;
constexpr u8 IRP_MN_SURPRISE_REMOVAL = 0x17;

enum DEVICE_RELATION_TYPE : i32 {
  BusRelations = 0,
  EjectionRelations = 1,
  PowerRelations = 2,
  RemovalRelations = 3,
  TargetDeviceRelation = 4,
  SingleBusRelations = 5,
};

enum BUS_QUERY_ID_TYPE : i32 {
  BusQueryDeviceID = 0,
  BusQueryHardwareIDs = 1,    // texts one behind the other, an empty one ends them
  BusQueryCompatibleIDs = 2,  // the same
  BusQueryInstanceID = 3,
  BusQueryDeviceSerialNumber = 4,
};

enum DEVICE_TEXT_TYPE : i32 {
  DeviceTextDescription = 0,
  DeviceTextLocationInformation = 1,
};

enum INTERFACE_TYPE : i32 {
  InterfaceTypeUndefined = -1,
  PNPBus = 15,
};

// The answer to IRP_MN_QUERY_DEVICE_RELATIONS: paged memory with a reference on each device, both
// the asker's to give back.
struct DEVICE_RELATIONS {
  u32 Count;
  DEVICE_OBJECT* Objects[1];  // Count of them
};
static_assert(sizeof(DEVICE_RELATIONS) == 16 && offsetof(DEVICE_RELATIONS, Objects) == 8);

// The answer to IRP_MN_QUERY_BUS_INFORMATION, in paged memory.
struct PNP_BUS_INFORMATION {
  GUID BusTypeGuid;
  INTERFACE_TYPE LegacyBusType;
  u32 BusNumber;
};
static_assert(sizeof(PNP_BUS_INFORMATION) == 24);

// Bits of DEVICE_CAPABILITIES::Flags.
constexpr u32 kDeviceCapabilityD1 = 0x1;
constexpr u32 kDeviceCapabilityD2 = 0x2;
constexpr u32 kDeviceCapabilityLockSupported = 0x4;
constexpr u32 kDeviceCapabilityEjectSupported = 0x8;
constexpr u32 kDeviceCapabilityRemovable = 0x10;
constexpr u32 kDeviceCapabilityDockDevice = 0x20;
constexpr u32 kDeviceCapabilityUniqueID = 0x40;
constexpr u32 kDeviceCapabilitySilentInstall = 0x80;
constexpr u32 kDeviceCapabilityRawDeviceOK = 0x100;
constexpr u32 kDeviceCapabilitySurpriseRemovalOK = 0x200;

struct DEVICE_CAPABILITIES {
  u16 Size;     // sizeof(DEVICE_CAPABILITIES)
  u16 Version;  // 1
  u32 Flags;    // a bit field of one-bit flags in the kernel's headers
  u32 Address;
  u32 UINumber;
  DEVICE_POWER_STATE DeviceState[kPowerSystemMaximum];  // by system state
  SYSTEM_POWER_STATE SystemWake;
  DEVICE_POWER_STATE DeviceWake;
  u32 D1Latency;
  u32 D2Latency;
  u32 D3Latency;
};
static_assert(sizeof(DEVICE_CAPABILITIES) == 64);
static_assert(offsetof(DEVICE_CAPABILITIES, Flags) == 4);
static_assert(offsetof(DEVICE_CAPABILITIES, DeviceState) == 16);
static_assert(offsetof(DEVICE_CAPABILITIES, SystemWake) == 44);
static_assert(offsetof(DEVICE_CAPABILITIES, D1Latency) == 52);

extern "C" {

// Tells the PnP manager that the relations of a physical device have changed, so that it asks for
// them again, later and in another thread. IRQL <= DISPATCH_LEVEL.
NTOS_IMPORT void IoInvalidateDeviceRelations(DEVICE_OBJECT* device, DEVICE_RELATION_TYPE type);
}
