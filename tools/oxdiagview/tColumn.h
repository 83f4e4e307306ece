#pragma once

#include <cstdint>
#include <string_view>

#include "oxdiagview/tPrefixText.h"

namespace oxdiagview {

// The numbers that lines had in one part of their prefixes, and how well they suit a field.
class tColumn {
 public:
  void note(uint64_t number);

  // 0 for what suits `field` well, more for what suits it less.
  int getCost(tField field) const;

  // More than any sum of costs: the field cannot be.
  static constexpr int kNever = 1000;

 private:
  int getSourceLineCost() const;
  int getStampCost() const;
  int getDeltaCost() const;
  int getVerbosityCost() const;

  uint64_t least = ~uint64_t{0};
  uint64_t most = 0;
  uint64_t last = 0;
  uint32_t count = 0;
  bool isRising = true;
  bool areRound = true;  // multiples of 5, as people choose verbosities
};

}  // namespace oxdiagview
