#pragma once

// Random numbers that are the same on every machine, compiler and library: splitmix64. Of two draws
// in one expression the compiler chooses the order, so there must not be two.

#include "ntos/types.h"

class tRepeatableRandom {
 public:
  explicit tRepeatableRandom(u64 seed) : state(seed) {}

  u64 next() {
    state += 0x9E3779B97F4A7C15;
    u64 mixed = state;
    mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9;
    mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EB;
    return mixed ^ (mixed >> 31);
  }

  // 0 to limit - 1.
  u32 below(u32 limit) { return static_cast<u32>((next() >> 32) * limit >> 32); }

  bool oneIn(u32 count) { return below(count) == 0; }

  // A number of a random length in bits, so that small ones are as frequent as large ones.
  u64 number() {
    u64 const whole = next();
    return whole >> below(64);
  }

  template <class T, size_t Count>
  T of(T const (&choices)[Count]) {
    return choices[below(static_cast<u32>(Count))];
  }

 private:
  u64 state;
};
