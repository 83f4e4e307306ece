#include "trace/recorder/tCrashRecord.h"

#include "trace/recorder/beginRing.h"

namespace nOXDIAG100 {
namespace {

u64 smaller(u64 left, u64 right) {
  return left < right ? left : right;
}

// The last `size` bytes that the ring has, as a ring of its own that is just full.
void copyNewest(tRecorderRing& ring, tRecorderRing& to, u64 size) {
  beginRing(to, size);
  to.written = size;
  to.address = ring.address;
  for (u64 index = 0; index < size; ++index) {
    to.getText()[index] = ring.getText()[(ring.written - size + index) % ring.capacity];
  }
}

}  // namespace

void tRecorderTraceDestination::tCrashRecord::dump(KBUGCHECK_CALLBACK_REASON reason,
                                                   KBUGCHECK_REASON_CALLBACK_RECORD* record,
                                                   void* data, u32 size) {
  if (reason != KbCallbackSecondaryDumpData || size < sizeof(KBUGCHECK_SECONDARY_DUMP_DATA)) return;
  tCrashRecord& self = *static_cast<tCrashRecord*>(record);
  self.owner.keepUnfinishedLines();
  self.give(*static_cast<KBUGCHECK_SECONDARY_DUMP_DATA*>(data));
}

void tRecorderTraceDestination::tCrashRecord::give(KBUGCHECK_SECONDARY_DUMP_DATA& data) const {
  data.OutBuffer = nullptr;
  data.OutBufferLength = 0;
  if (owner.ring == nullptr) return;
  tRecorderRing& kept = *owner.ring;
  u64 const whole = sizeof(kept) + kept.capacity;
  __builtin_memcpy(&data.Guid, kDumpGuid, sizeof(data.Guid));
  if (whole <= data.MaximumAllowed) {
    data.OutBuffer = &kept;
    data.OutBufferLength = static_cast<u32>(whole);
    return;
  }
  u64 const room = smaller(data.InBufferLength, data.MaximumAllowed);
  if (data.InBuffer == nullptr || room <= sizeof(kept)) return;
  u64 const text = smaller(room - sizeof(kept), smaller(kept.written, kept.capacity));
  if (text == 0) return;
  copyNewest(kept, *static_cast<tRecorderRing*>(data.InBuffer), text);
  data.OutBuffer = data.InBuffer;
  data.OutBufferLength = static_cast<u32>(sizeof(kept) + text);
}

}  // namespace nOXDIAG100
