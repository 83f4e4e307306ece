#pragma once

// The end of the system, and what still happens then.

#include "ntos/guid.h"
#include "ntos/types.h"

// The code of a stack whose cookie was written over.
constexpr u32 DRIVER_OVERRAN_STACK_BUFFER = 0xF7;

enum KBUGCHECK_CALLBACK_REASON : u32 {
  KbCallbackInvalid = 0,
  KbCallbackSecondaryDumpData = 2,
};

enum KBUGCHECK_BUFFER_DUMP_STATE : u8 { BufferEmpty, BufferInserted };

struct _KBUGCHECK_REASON_CALLBACK_RECORD;

// Called at HIGH_LEVEL while no other processor runs: no lock, no allocation, nothing that is
// paged.
using KBUGCHECK_REASON_CALLBACK_ROUTINE = void(KBUGCHECK_CALLBACK_REASON reason,
                                               _KBUGCHECK_REASON_CALLBACK_RECORD* record,
                                               void* data, u32 size);

// In non-paged memory that stays until it is deregistered; State is BufferEmpty before.
struct _KBUGCHECK_REASON_CALLBACK_RECORD {
  LIST_ENTRY Entry;
  KBUGCHECK_REASON_CALLBACK_ROUTINE* CallbackRoutine;
  u8* Component;
  u64 Checksum;
  KBUGCHECK_CALLBACK_REASON Reason;
  u8 State;
};
using KBUGCHECK_REASON_CALLBACK_RECORD = _KBUGCHECK_REASON_CALLBACK_RECORD;
static_assert(sizeof(KBUGCHECK_REASON_CALLBACK_RECORD) == 48);

// What the reason KbCallbackSecondaryDumpData comes with. The routine fills Guid, OutBuffer and
// OutBufferLength, of MaximumAllowed bytes at most; InBuffer is memory that it may use. It may be
// called more than once.
struct KBUGCHECK_SECONDARY_DUMP_DATA {
  void* InBuffer;
  u32 InBufferLength;
  u32 MaximumAllowed;
  GUID Guid;
  void* OutBuffer;
  u32 OutBufferLength;
};
static_assert(sizeof(KBUGCHECK_SECONDARY_DUMP_DATA) == 48);

extern "C" {

// Any IRQL. False when the record is registered already.
NTOS_IMPORT u8 KeRegisterBugCheckReasonCallback(KBUGCHECK_REASON_CALLBACK_RECORD* record,
                                                KBUGCHECK_REASON_CALLBACK_ROUTINE* routine,
                                                KBUGCHECK_CALLBACK_REASON reason, u8* component);

// Any IRQL. False when the record is not registered.
NTOS_IMPORT u8 KeDeregisterBugCheckReasonCallback(KBUGCHECK_REASON_CALLBACK_RECORD* record);

// Stops the system with a code and what belongs to it. Any IRQL; does not return.
[[noreturn]] NTOS_IMPORT void KeBugCheckEx(u32 code, u64 first, u64 second, u64 third, u64 fourth);
}
