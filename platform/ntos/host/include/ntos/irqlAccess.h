#pragma once

#include "ntos/types.h"

extern "C" {
NTOS_IMPORT KIRQL KeGetCurrentIrql();
NTOS_IMPORT void KeRaiseIrql(KIRQL level, KIRQL* previous);
NTOS_IMPORT void KeLowerIrql(KIRQL level);
}
