#pragma once

// The names of the objects that the registry issues handles for. The registry itself knows none of
// them: whoever builds it hands it their table.

#include "oxdiagk/tConfigurable.h"

namespace nOXDIAG100 {

struct tNamedInstance {
  char const* name;
  tConfigurable& (*getInstance)();  // may be called at any time, as findNamedInstance
};

// A null name means the first one. The table outlives whoever is given it.
struct tNamedInstances {
  tNamedInstance const* first = nullptr;
  u32 count = 0;
};

// The object that acquireInstance issues a handle for when it is given this name; null when the
// name means none. Any IRQL.
tConfigurable* findNamedInstance(tNamedInstances const& instances, char const* name);

}  // namespace nOXDIAG100
