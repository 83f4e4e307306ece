#include "ntos/bugCheck.h"

#include <stdio.h>

#include <mutex>

#include "ntos/irql.h"
#include "ntoshost/bugCheck.h"
#include "ntoshost/violation.h"

namespace {

std::mutex guard;
KBUGCHECK_REASON_CALLBACK_RECORD* firstRecord = nullptr;  // linked by Entry.Flink
char const* dumpFile = nullptr;
u32 mostForDump = 64 * 1024 * 1024;

KBUGCHECK_REASON_CALLBACK_RECORD* getNext(KBUGCHECK_REASON_CALLBACK_RECORD const& record) {
  return reinterpret_cast<KBUGCHECK_REASON_CALLBACK_RECORD*>(record.Entry.Flink);
}

void write(FILE* file, KBUGCHECK_SECONDARY_DUMP_DATA const& data) {
  u64 const length = data.OutBufferLength;
  fwrite(&data.Guid, sizeof(data.Guid), 1, file);
  fwrite(&length, sizeof(length), 1, file);
  fwrite(data.OutBuffer, 1, length, file);
}

// As the kernel does, without a lock, which the thread that crashes may hold.
void collect(FILE* file) {
  static u8 room[4096];
  for (auto* record = firstRecord; record != nullptr; record = getNext(*record)) {
    KBUGCHECK_SECONDARY_DUMP_DATA data = {};
    data.InBuffer = room;
    data.InBufferLength = sizeof(room);
    data.MaximumAllowed = mostForDump;
    record->CallbackRoutine(record->Reason, record, &data, sizeof(data));
    if (file != nullptr && data.OutBuffer != nullptr) write(file, data);
  }
}

}  // namespace

namespace ntoshost {

void setDumpFile(char const* path) {
  dumpFile = path;
}

void limitDump(u32 bytes) {
  mostForDump = bytes;
}

}  // namespace ntoshost

u8 KeRegisterBugCheckReasonCallback(KBUGCHECK_REASON_CALLBACK_RECORD* record,
                                    KBUGCHECK_REASON_CALLBACK_ROUTINE* routine,
                                    KBUGCHECK_CALLBACK_REASON reason, u8* component) {
  std::lock_guard const held(guard);
  if (record->State != BufferEmpty) return 0;
  record->CallbackRoutine = routine;
  record->Reason = reason;
  record->Component = component;
  record->State = BufferInserted;
  record->Entry.Flink = reinterpret_cast<LIST_ENTRY*>(firstRecord);
  firstRecord = record;
  return 1;
}

u8 KeDeregisterBugCheckReasonCallback(KBUGCHECK_REASON_CALLBACK_RECORD* record) {
  std::lock_guard const held(guard);
  if (record->State != BufferInserted) return 0;
  auto** place = &firstRecord;
  while (*place != record) place = reinterpret_cast<decltype(place)>(&(*place)->Entry.Flink);
  *place = getNext(*record);
  record->State = BufferEmpty;
  return 1;
}

void KeBugCheckEx(u32 code, u64 first, u64 second, u64 third, u64 fourth) {
  KIRQL before;
  KeRaiseIrql(HIGH_LEVEL, &before);
  FILE* const file = dumpFile == nullptr ? nullptr : fopen(dumpFile, "wb");
  collect(file);
  if (file != nullptr) fclose(file);
  ntoshost::violation(
      "bug check 0x%X (0x%llX, 0x%llX, 0x%llX, 0x%llX)", code,
      static_cast<unsigned long long>(first), static_cast<unsigned long long>(second),
      static_cast<unsigned long long>(third), static_cast<unsigned long long>(fourth));
}
