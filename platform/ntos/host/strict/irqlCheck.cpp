#include "irqlCheck.h"

#include "ntoshost/violation.h"
#include "pool/pagedMemory.h"
#include "suspension.h"

namespace ntoshost {

void requireIrqlOnly(KIRQL highest, char const* call) {
  preparePagedAccess();
  KIRQL const level = KeGetCurrentIrql();
  if (level <= highest) return;
  violation("%s was called at IRQL %u (%s); it may be called up to IRQL %u (%s).", call, level,
            irqlName(level), highest, irqlName(highest));
}

void requireIrqlAtMost(KIRQL highest, char const* call) {
  requireIrqlOnly(highest, call);
  countCall();
}

}  // namespace ntoshost
