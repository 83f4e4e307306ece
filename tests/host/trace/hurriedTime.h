#pragma once

#include "ntoshost/time.h"

// Time passes so fast that a wait of ten seconds takes a fraction of one.
class tHurriedTime {
 public:
  static constexpr u32 kRate = 50;

  tHurriedTime() { ntoshost::setTimeRate(kRate); }
  ~tHurriedTime() { ntoshost::setTimeRate(1); }
  tHurriedTime(tHurriedTime const&) = delete;
  tHurriedTime& operator=(tHurriedTime const&) = delete;
};
