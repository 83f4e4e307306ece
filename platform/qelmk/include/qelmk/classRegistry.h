#pragma once

// The classes that can be found by name.

#include "qelmk/api.h"
#include "qelmk/tClassImplementation.h"

namespace nQELM100 {

// Bytes of the longest name of a class.
constexpr u32 kMostClassNameLength = 511;

// From now on tClass::forName finds the class of `record`, which must stay until it is
// unregistered. The same record may be registered again, and is then to be unregistered as often.
// Allocates nothing, and takes time that grows with the logarithm of the number of classes. Does
// nothing when `status` is negative on entry; a failure registers nothing and is stored there:
//   kStatusClassNameTaken  another class of this name is registered
//   kStatusBadArgument     the name is null, empty or longer than kMostClassNameLength
//   kStatusNotInitialized  the framework is not running
// The registry is guarded by a fast mutex. IRQL <= APC_LEVEL; any thread.
QELM_API void registerClass(tClassImplementation& record, i32& status);

// Undoes one registration; what is not registered is ignored. Objects of the class may still live,
// and are destroyed as before. IRQL <= APC_LEVEL; any thread.
QELM_API void unregisterClass(tClassImplementation& record);

}  // namespace nQELM100
