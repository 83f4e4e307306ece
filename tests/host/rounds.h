#pragma once

// How long random tests go on: a part of their rounds, or all of them in the preset host-rounds;
// and which places of many a test looks at: one of a few, or each of them there.

constexpr int roundsOf(int whole) {
  return whole / OXDIAG_ROUND_DIVISOR;
}

constexpr unsigned kPlaceStep = OXDIAG_ROUND_DIVISOR == 1 ? 1 : 5;
