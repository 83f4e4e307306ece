#pragma once

// A program's threads are at PASSIVE_LEVEL, and stay there.

extern "C" {

inline KIRQL KeGetCurrentIrql() {
  return PASSIVE_LEVEL;
}

inline void KeRaiseIrql(KIRQL, KIRQL* previous) {
  *previous = PASSIVE_LEVEL;
}

inline void KeLowerIrql(KIRQL) {
}
}
