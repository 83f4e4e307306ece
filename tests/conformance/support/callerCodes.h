#pragma once
// Codes of a caller: what a status of its holds from before, and what it sets one to.

#include "ntos/types.h"

constexpr i32 kEarlierError = -12345;
constexpr i32 kEarlierWarning = 12345;
constexpr i32 kError = -61007;
constexpr i32 kWarning = 61001;
