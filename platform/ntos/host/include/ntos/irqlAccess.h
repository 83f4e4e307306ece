#pragma once

#include "ntos/threadWords.h"

extern "C" {

inline KIRQL KeGetCurrentIrql() {
  return ntoshost::g_words.level;
}

NTOS_IMPORT void KeRaiseIrql(KIRQL level, KIRQL* previous);
NTOS_IMPORT void KeLowerIrql(KIRQL level);
}
