#include "bugChecks.h"

#include "ntos/bugCheck.h"
#include "oxdiagk/module.h"
#include "tModuleImage.h"
#include "wine/redirect.h"

namespace {

constinit u32 registered = 0;

u8 enter(KBUGCHECK_REASON_CALLBACK_RECORD* record, KBUGCHECK_REASON_CALLBACK_ROUTINE* routine,
         KBUGCHECK_CALLBACK_REASON reason, u8* component) {
  if (record->State != BufferEmpty) return 0;
  record->CallbackRoutine = routine;
  record->Reason = reason;
  record->Component = component;
  record->State = BufferInserted;
  __atomic_fetch_add(&registered, 1, __ATOMIC_RELAXED);
  return 1;
}

u8 leave(KBUGCHECK_REASON_CALLBACK_RECORD* record) {
  if (record->State != BufferInserted) return 0;
  record->State = BufferEmpty;
  __atomic_fetch_sub(&registered, 1, __ATOMIC_RELAXED);
  return 1;
}

bool answer(tModuleImage const& image, char const* name, void* function) {
  return redirect(image.findImport(name), function);
}

}  // namespace

bool answerBugCheckCalls() {
  tModuleImage const library(reinterpret_cast<void const*>(&oxdiagkInitialize));
  return answer(library, "KeRegisterBugCheckReasonCallback", reinterpret_cast<void*>(&enter)) &&
         answer(library, "KeDeregisterBugCheckReasonCallback", reinterpret_cast<void*>(&leave));
}

u32 countBugCheckCallbacks() {
  return registered;
}
