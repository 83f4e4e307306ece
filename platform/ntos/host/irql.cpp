#include "ntos/irql.h"

#include "irqlCheck.h"
#include "ntoshost/violation.h"
#include "pool/pagedMemory.h"
#include "suspension.h"

namespace {

bool isAbovePaging(KIRQL level) {
  return level >= DISPATCH_LEVEL;
}

void setLevel(KIRQL level) {
  bool const crosses = isAbovePaging(level) != isAbovePaging(ntoshost::g_words.level);
  ntoshost::g_words.level = level;
  if (crosses) ntoshost::notePagingBorder(isAbovePaging(level));
}

}  // namespace

namespace ntoshost {

char const* irqlName(KIRQL level) {
  switch (level) {
    case PASSIVE_LEVEL:
      return "PASSIVE_LEVEL";
    case APC_LEVEL:
      return "APC_LEVEL";
    case DISPATCH_LEVEL:
      return "DISPATCH_LEVEL";
    default:
      return "device level";
  }
}

}  // namespace ntoshost

void KeRaiseIrql(KIRQL level, KIRQL* previous) {
  if (level > HIGH_LEVEL) {
    ntoshost::violation("KeRaiseIrql was asked for IRQL %u; the highest is %u.", level, HIGH_LEVEL);
  }
  if (level < ntoshost::g_words.level) {
    ntoshost::violation("KeRaiseIrql would lower the IRQL from %u to %u.", ntoshost::g_words.level,
                        level);
  }
  *previous = ntoshost::g_words.level;
  setLevel(level);
}

void KeLowerIrql(KIRQL level) {
  if (level > ntoshost::g_words.level) {
    ntoshost::violation("KeLowerIrql would raise the IRQL from %u to %u.", ntoshost::g_words.level,
                        level);
  }
  setLevel(level);
  ntoshost::takeSuspension();
}
