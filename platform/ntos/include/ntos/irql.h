#pragma once

#include "ntos/types.h"

// Interrupt request level: what may interrupt the running code, and so what that code may do.
// Each kernel call states the highest level it may be called at.

constexpr KIRQL PASSIVE_LEVEL = 0;   // ordinary thread code; everything is allowed
constexpr KIRQL APC_LEVEL = 1;       // paged memory and waiting are still allowed
constexpr KIRQL DISPATCH_LEVEL = 2;  // no paged memory, no waiting
constexpr KIRQL HIGH_LEVEL = 15;     // nothing interrupts

// KIRQL KeGetCurrentIrql();
//     The level of the caller. Any IRQL.
//
// void KeRaiseIrql(KIRQL level, KIRQL* previous);
//     Raises the level and stores the level before. `level` must not be below the current one.
//
// void KeLowerIrql(KIRQL level);
//     Goes back to the level that KeRaiseIrql stored. `level` must not be above the current one.
//
// The host executive keeps one level a thread, starting at PASSIVE_LEVEL, and stops the program
// when a call is made at a wrong one.
#include "ntos/irqlAccess.h"
