#pragma once

// Status codes of the object framework: 32-bit signed, negative an error, positive a warning, zero
// success.

#include "compiler/types.h"

namespace nQELM100 {

// An object is not of the class that the operation needs.
constexpr i32 kStatusClassMismatch = -89000;

// A class without factory was asked for an instance.
constexpr i32 kStatusClassAbstract = -89001;

// A tClass that stands for no class was used.
constexpr i32 kStatusClassInvalid = -89002;

// A class of this name is registered already.
constexpr i32 kStatusClassNameTaken = -89003;

// No class of this name is registered.
constexpr i32 kStatusClassUnknown = -89004;

// The stream ended within an item, or the content of an object within one of its items.
constexpr i32 kStatusStreamEnded = -89100;

// The bytes do not begin as a stream does.
constexpr i32 kStatusStreamBadHeader = -89101;

// The stream is of a later version than this reader knows.
constexpr i32 kStatusStreamNewer = -89102;

// More objects lie in one another than a stream may have.
constexpr i32 kStatusStreamTooDeep = -89103;

// The bytes contradict themselves or what is possible.
constexpr i32 kStatusStreamMalformed = -89104;

// The buffer of a writer is too small.
constexpr i32 kStatusStreamFull = -89105;

// A text or an object is longer than a stream can say.
constexpr i32 kStatusStreamTooLong = -89106;

// Warning of a reader: the list that was to be read is not there.
constexpr i32 kStatusNoListFollows = 88800;

}  // namespace nQELM100
