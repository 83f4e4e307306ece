#pragma once

// Descriptions that a status owns.

#include "ntos/types.h"
#include "oxdiagk/iStatus2Description.h"

namespace nOXDIAG100 {

// A copy, made through the framework's cloning interface. Null with the reason in `status` on
// failure.
iStatus2Description* cloneDescription(iStatus2Description const& description, i32& status);

// Takes `object` over: the description that it is, or null when it is none or null itself; it is
// then destroyed and `status` becomes -89000, unless it holds an error already.
iStatus2Description* adoptDescription(nQELM100::tObject* object, i32& status);

// Destroys it through its class; null does nothing.
void destroyDescription(iStatus2Description* description);

}  // namespace nOXDIAG100
