#include "trace/serialRates.h"

namespace nOXDIAG100 {
namespace {

struct tSerialRate {
  char const* word;
  u32 baud;

  constexpr u16 getDivisor() const {
    return static_cast<u16>((kSerialBaudMost + baud / 2) / baud);  // to the nearest
  }

  // Whether inquire may name it.
  constexpr bool isReported() const { return baud != 2000 && baud != 1800; }
};

constexpr tSerialRate kRates[] = {
    {"115200", 115200}, {"57600", 57600}, {"38400", 38400}, {"19200", 19200}, {"9600", 9600},
    {"4800", 4800},     {"2400", 2400},   {"2000", 2000},   {"1800", 1800},   {"1200", 1200},
};

}  // namespace

u16 getSerialDivisor(char const* baud) {
  if (baud == nullptr) return 0;
  for (tSerialRate const& rate : kRates) {
    if (__builtin_strcmp(baud, rate.word) == 0) return rate.getDivisor();
  }
  return 0;
}

char const* getSerialBaud(u16 divisor) {
  for (tSerialRate const& rate : kRates) {
    if (rate.getDivisor() == divisor && rate.isReported()) return rate.word;
  }
  return nullptr;
}

}  // namespace nOXDIAG100
