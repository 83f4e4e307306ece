#pragma once

// The buses whose child devices the module serves.

#include "ntos/fastMutex.h"
#include "ntos/types.h"

namespace nOXDIAG100 {

struct tWDMWrapperState {
  FAST_MUTEX guard;
  LIST_ENTRY parents;  // the anchor of the parents' ring; under the guard
};

// The one of the module: zeros until initialiseWDMWrapper().
extern tWDMWrapperState wdmWrapperState;

// Makes the guard ready and the list empty. Before any device is handed to the module.
void initialiseWDMWrapper();

}  // namespace nOXDIAG100
