#pragma once

// The names of the objects that the registry issues handles for.

#include "oxdiagk/tConfigurable.h"

namespace nOXDIAG100 {

// The object that acquireInstance issues a handle for when it is given this name; null when the
// name means none. Any IRQL.
tConfigurable* findNamedInstance(char const* name);

}  // namespace nOXDIAG100
