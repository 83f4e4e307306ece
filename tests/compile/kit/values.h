#pragma once

// What "oxdiagk/kernelValues.h" shows, given as the kit's types and constants. Behind the kit's
// headers.

#include "oxdiagk/kernelValues.h"
#include "oxdiagk/tTrace.h"

namespace nValues {

using namespace nOXDIAG100;

inline void putRequest(tTrace& trace, IO_STACK_LOCATION const& at, KIRQL level) {
  trace.put(asIrpMajor(at.MajorFunction)).put(asIrpMinor(at.MajorFunction, at.MinorFunction));
  trace.put(asIrpMajor(IRP_MJ_PNP)).put(asIrpMinor(IRP_MJ_PNP, IRP_MN_START_DEVICE));
  trace.put(asIrql(level)).put(asIrql(DISPATCH_LEVEL)).put(asIrql(KeGetCurrentIrql()));
}

inline void putPower(tTrace& trace, IO_STACK_LOCATION const& at) {
  trace.put(asDevicePowerState(at.Parameters.Power.State.DeviceState));
  trace.put(asSystemPowerState(at.Parameters.Power.State.SystemState));
  trace.put(asDevicePowerState(PowerDeviceD0)).put(asSystemPowerState(PowerSystemWorking));
}

inline void putNames(tTrace& trace, PUNICODE_STRING name, UNICODE_STRING const& counted,
                     PANSI_STRING narrow, OBJECT_ATTRIBUTES const& attributes) {
  trace.put(asUnicodeString(name)).put(asUnicodeString(&counted)).put(asAnsiString(narrow));
  trace.put(asUnicodeString(attributes.ObjectName));
}

inline void putOthers(tTrace& trace, NTSTATUS status, GUID const& guid, LPCGUID other,
                      IO_STATUS_BLOCK const& result, LARGE_INTEGER time) {
  trace.put(asNtStatus(status)).put(asNtStatus(STATUS_INVALID_HANDLE));
  trace.put(asNtStatus(result.Status)).put(asGuid(&guid)).put(asGuid(other));
  trace.put(asKernelTime(time.QuadPart));
}

}  // namespace nValues
