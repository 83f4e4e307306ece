#pragma once

// How long random tests go on. The clang build runs all rounds, the g++ build, which checks the
// same code with the same seeds, an eighth of them.

#ifndef OXDIAG_ROUND_DIVISOR
#define OXDIAG_ROUND_DIVISOR 1
#endif

constexpr int roundsOf(int whole) {
  return whole / OXDIAG_ROUND_DIVISOR;
}
