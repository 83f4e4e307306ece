#pragma once

// What a program may ask the bus and its devices by device control. The buffers travel as the
// caller gave them (METHOD_NEITHER); the answers are structures of a fixed size, for which the
// output buffer must have room. There is no input.
//
//     tSlotLine line;
//     DeviceIoControl(device, kControlTellLine, nullptr, 0, &line, sizeof(line), &given, nullptr);

#include "ntos/irp.h"
#include "slotbus/component/statusCodes.h"

namespace nSLOTBUS100 {

constexpr u32 kSlotbusDeviceType = 0x8042;

// Asks the bus; answers with a tBusCount.
constexpr u32 kControlCountDevices =
    ntosControlCode(kSlotbusDeviceType, 0x801, METHOD_NEITHER, FILE_ANY_ACCESS);

// Asks a device in a slot; answers with a tSlotLine.
constexpr u32 kControlTellLine =
    ntosControlCode(kSlotbusDeviceType, 0x802, METHOD_NEITHER, FILE_ANY_ACCESS);

struct tBusCount {
  u32 devices;   // that the bus has shown to the system
  u32 failures;  // devices that it could not show
};

// A line of the rack, as the device was made from it.
struct tSlotLine {
  u32 lineNumber;  // counted from 1
  u32 slot;
  u64 instance;
  char description[kMaxDescriptionLength + 1];  // terminated
};

}  // namespace nSLOTBUS100
