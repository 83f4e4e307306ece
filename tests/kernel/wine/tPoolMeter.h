#pragma once

#include "ntos/types.h"

// Counts the blocks of kernel pool that vexk and oxdiagk take and do not give back: while it is
// there, it stands between these modules and the kernel's pool. Answers to requests do not count,
// as those who ask give them back. One at a time.
class tPoolMeter {
 public:
  tPoolMeter();
  ~tPoolMeter();
  tPoolMeter(tPoolMeter const&) = delete;
  tPoolMeter& operator=(tPoolMeter const&) = delete;

  // False when the modules' imports were not where they are expected, or when more blocks were
  // taken at a time than the meter can tell apart.
  bool isSound() const;

  u32 countBlocks() const;

 private:
  bool isInstalled;
};
