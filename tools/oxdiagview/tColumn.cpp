#include "oxdiagview/tColumn.h"

#include <algorithm>

namespace oxdiagview {
namespace {

constexpr uint64_t kLongSource = 99'999;  // lines; few sources have more
constexpr uint64_t kLongestSource = 9'999'999;
constexpr uint64_t kEarlyStamp = 10'000'000;  // ticks; some milliseconds after the start
constexpr uint64_t kUsualVerbosity = 255;
constexpr uint64_t kHighVerbosity = 999;
constexpr uint64_t kHighestVerbosity = 9'999;
constexpr uint32_t kEnoughToCompare = 3;

}  // namespace

void tColumn::note(uint64_t number) {
  isRising = isRising && number >= last;
  areRound = areRound && number % 5 == 0;
  least = std::min(least, number);
  most = std::max(most, number);
  last = number;
  ++count;
}

int tColumn::getCost(tField field) const {
  switch (field) {
    case kSourceLine:
      return getSourceLineCost();
    case kStamp:
      return getStampCost();
    case kDelta:
      return getDeltaCost();
    case kVerbosity:
      return getVerbosityCost();
    default:
      return kNever;
  }
}

int tColumn::getSourceLineCost() const {
  if (most > kLongestSource || least == 0) return kNever;
  if (most > kLongSource) return 6;
  return areRound && count >= kEnoughToCompare ? 3 : 0;
}

int tColumn::getStampCost() const {
  if (least < kEarlyStamp) return 30;
  return isRising ? 0 : 4;
}

int tColumn::getDeltaCost() const {
  return count >= kEnoughToCompare && least >= kEarlyStamp ? 8 : 4;
}

int tColumn::getVerbosityCost() const {
  if (most > kHighestVerbosity) return kNever;
  int const roundness = areRound ? 0 : 3;
  if (most > kHighVerbosity) return 8 + roundness;
  return (most > kUsualVerbosity ? 3 : 1) + roundness;
}

}  // namespace oxdiagview
