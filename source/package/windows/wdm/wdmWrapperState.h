#pragma once

// The buses whose child devices the module serves.

#include "package/windows/wdm/tParentList.h"

namespace nOXDIAG100 {

// The list of the module, not ready until initialiseWDMWrapper().
extern tParentList wdmParents;

// Makes the list ready, if it is not. Before any device is handed to the module.
void initialiseWDMWrapper();

}  // namespace nOXDIAG100
