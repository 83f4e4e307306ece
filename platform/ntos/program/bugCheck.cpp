#include "ntos/bugCheck.h"

// A program that ends badly leaves no crash dump of the kernel, so nobody is called for one.

u8 KeRegisterBugCheckReasonCallback(KBUGCHECK_REASON_CALLBACK_RECORD*,
                                    KBUGCHECK_REASON_CALLBACK_ROUTINE*, KBUGCHECK_CALLBACK_REASON,
                                    u8*) {
  return 1;
}

u8 KeDeregisterBugCheckReasonCallback(KBUGCHECK_REASON_CALLBACK_RECORD*) {
  return 1;
}
