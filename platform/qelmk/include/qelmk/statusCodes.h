#pragma once

// Status codes of the object framework: 32-bit signed, negative an error, positive a warning, zero
// success.

#include "ntos/types.h"

namespace nQELM100 {

// An object is not of the class that the operation needs.
constexpr i32 kStatusClassMismatch = -89000;

// A class without factory was asked for an instance.
constexpr i32 kStatusClassAbstract = -89001;

// A tClass that stands for no class was used.
constexpr i32 kStatusClassInvalid = -89002;

// Warning of a reader: the list that was to be read is not there.
constexpr i32 kStatusNoListFollows = 88800;

}  // namespace nQELM100
