#pragma once

// What a kernel author prints, in words:
//
//     OXDIAG_TRACE(140, put("cannot open ").put(asUnicodeString(name)).put(": ")
//                           .put(asNtStatus(status)));
//
//   asNtStatus(status)             STATUS_INVALID_HANDLE (0xC0000008)
//   asUnicodeString(&name)         \Device\Rack
//   asAnsiString(&name)            rack
//   asGuid(&guid)                  {6E0B2C51-7A1D-4F38-935E-204CB817D962}
//   asIrpMajor(major)              IRP_MJ_PNP (0x1B)
//   asIrpMinor(major, minor)       IRP_MN_START_DEVICE (0x00)
//   asIrql(level)                  DISPATCH_LEVEL (2)
//   asDevicePowerState(state)      PowerDeviceD0 (1)
//   asSystemPowerState(state)      PowerSystemWorking (1)
//   asKernelTime(time.QuadPart)    2026-11-22T14:10:38.1234567Z
//
// A number without a name is written alone, in the same form: 0x2A of a major code, 9 of a power
// state. Of a status its parts follow: 0xE0001234 (error, customer, facility 0x0, code 0x1234). The
// interrupt request levels are those of x64; 3 to 11 are "device level (5)".
//
// The names are those of the driver kit; a status with two names has the one that ntstatus.h
// defines first.
//
// None of this declares a type of the kernel: the strings and GUIDs are taken as whatever header
// declares them. The objects refer to strings and GUIDs and are for the chain that they stand in.
//
// Allocates nothing. Any thread, any IRQL at which the argument may be read; what is written goes
// the way of every put.

#include "oxdiagk/tCountedText.h"
#include "oxdiagk/tGUIDText.h"
#include "oxdiagk/tKernelTimeText.h"
#include "oxdiagk/tNumberByName.h"

namespace nOXDIAG100 {

inline tNumberByName asNtStatus(i32 status) {
  return {tNumberByName::kStatus, static_cast<u32>(status)};
}

// The major and minor code of a request, as its stack location has them. A minor code has a name
// for the major codes IRP_MJ_PNP, IRP_MJ_POWER, IRP_MJ_SYSTEM_CONTROL and
// IRP_MJ_INTERNAL_DEVICE_CONTROL.
inline tNumberByName asIrpMajor(u8 major) {
  return {tNumberByName::kIrpMajor, major};
}
inline tNumberByName asIrpMinor(u8 major, u8 minor) {
  return {tNumberByName::kIrpMinor, static_cast<u32>(major) << 8 | minor};
}

// An interrupt request level, such as KeGetCurrentIrql() returns.
inline tNumberByName asIrql(u8 level) {
  return {tNumberByName::kIrql, level};
}

// A DEVICE_POWER_STATE, a SYSTEM_POWER_STATE.
inline tNumberByName asDevicePowerState(i32 state) {
  return {tNumberByName::kDevicePower, static_cast<u32>(state)};
}
inline tNumberByName asSystemPowerState(i32 state) {
  return {tNumberByName::kSystemPower, static_cast<u32>(state)};
}

// Units of 100 ns since 1601 in UTC, as KeQuerySystemTime gives them; negative for an interval.
inline tKernelTimeText asKernelTime(i64 hundredNanoseconds) {
  return tKernelTimeText(hundredNanoseconds);
}

// A UNICODE_STRING, an ANSI_STRING: Length bytes at Buffer, whatever MaximumLength says. Null is
// written as (null), and so is a null Buffer with a Length.
template <class tString>
tCountedText asUnicodeString(tString const* string) {
  if (string == nullptr) return tCountedText();
  wchar_t const* const units = string->Buffer;
  return tCountedText(units, string->Length);
}
template <class tString>
tCountedText asAnsiString(tString const* string) {
  if (string == nullptr) return tCountedText();
  char const* const bytes = string->Buffer;
  return tCountedText(bytes, string->Length);
}

// A GUID, or null.
template <class tGuid>
tGUIDText asGuid(tGuid const* guid) {
  static_assert(sizeof(guid->Data1) == 4 && sizeof(*guid) == 16, "this is no GUID");
  return tGUIDText(guid);
}

}  // namespace nOXDIAG100
