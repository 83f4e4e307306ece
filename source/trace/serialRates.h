#pragma once

// The rates of the serial destination.

#include "ntos/types.h"

namespace nOXDIAG100 {

// The rate of divisor 1.
constexpr u32 kSerialBaudMost = 115200;
constexpr u16 kSerialDivisorOfMost = 1;

// The divisor that an option word chooses; 0 when the word is null or no rate.
u16 getSerialDivisor(char const* baud);

// The word that chooses a divisor exactly; null when there is none.
char const* getSerialBaud(u16 divisor);

}  // namespace nOXDIAG100
