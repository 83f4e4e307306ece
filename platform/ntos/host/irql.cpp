#include "ntos/irql.h"

#include "irqlCheck.h"
#include "ntoshost/violation.h"
#include "pool/pagedMemory.h"

namespace {
constinit thread_local KIRQL g_level = PASSIVE_LEVEL;

bool isAbovePaging(KIRQL level) {
  return level >= DISPATCH_LEVEL;
}

void setLevel(KIRQL level) {
  bool const crosses = isAbovePaging(level) != isAbovePaging(g_level);
  g_level = level;
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

KIRQL KeGetCurrentIrql() {
  return g_level;
}

void KeRaiseIrql(KIRQL level, KIRQL* previous) {
  if (level > HIGH_LEVEL) {
    ntoshost::violation("KeRaiseIrql was asked for IRQL %u; the highest is %u.", level, HIGH_LEVEL);
  }
  if (level < g_level) {
    ntoshost::violation("KeRaiseIrql would lower the IRQL from %u to %u.", g_level, level);
  }
  *previous = g_level;
  setLevel(level);
}

void KeLowerIrql(KIRQL level) {
  if (level > g_level) {
    ntoshost::violation("KeLowerIrql would raise the IRQL from %u to %u.", g_level, level);
  }
  setLevel(level);
}
