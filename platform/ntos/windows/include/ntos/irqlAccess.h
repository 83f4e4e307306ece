#pragma once

#include "ntos/types.h"

extern "C" {
NTOS_IMPORT KIRQL KfRaiseIrql(KIRQL level);
NTOS_IMPORT void KeLowerIrql(KIRQL level);
}

// The level is the task priority register of the processor.
inline KIRQL KeGetCurrentIrql() {
  u64 level;
  __asm__ volatile("movq %%cr8, %0" : "=r"(level));
  return static_cast<KIRQL>(level);
}

inline void KeRaiseIrql(KIRQL level, KIRQL* previous) {
  *previous = KfRaiseIrql(level);
}
