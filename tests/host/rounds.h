#pragma once

// How long random tests go on: a part of their rounds, or all of them in the preset host-rounds.

constexpr int roundsOf(int whole) {
  return whole / OXDIAG_ROUND_DIVISOR;
}
