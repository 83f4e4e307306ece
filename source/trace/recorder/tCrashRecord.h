#pragma once

#include "ntos/bugCheck.h"
#include "oxdiagk/tRecorderTraceDestination.h"

namespace nOXDIAG100 {

// The recorder's place in the kernel's list of those who have something for a crash dump, while the
// object lives. In module memory, which is not paged.
class tRecorderTraceDestination::tCrashRecord : public KBUGCHECK_REASON_CALLBACK_RECORD {
 public:
  VEX_MODULE_MEMORY

  explicit tCrashRecord(tRecorderTraceDestination& owner)
      : KBUGCHECK_REASON_CALLBACK_RECORD{}, owner(owner) {
    KeRegisterBugCheckReasonCallback(this, &dump, KbCallbackSecondaryDumpData, name);
  }
  ~tCrashRecord() { KeDeregisterBugCheckReasonCallback(this); }

  tCrashRecord(tCrashRecord const&) = delete;
  tCrashRecord& operator=(tCrashRecord const&) = delete;

 private:
  // Called by the kernel as it stops.
  static void dump(KBUGCHECK_CALLBACK_REASON reason, KBUGCHECK_REASON_CALLBACK_RECORD* record,
                   void* data, u32 size);

  // Gives the ring, or its newest part in the memory that came along when not all is allowed.
  void give(KBUGCHECK_SECONDARY_DUMP_DATA& data) const;

  tRecorderTraceDestination& owner;
  u8 name[8] = {'o', 'x', 'd', 'i', 'a', 'g', 'k', 0};
};

}  // namespace nOXDIAG100
