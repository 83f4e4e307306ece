#pragma once

namespace nOXDIAG100 {

class tTraceParts;

// As tTrace::enableMutex and disableMutex: opens the line lock if need be, waits for it, and turns
// the switch of the line mutex. IRQL <= APC_LEVEL.
void turnMutex(tTraceParts& stream, bool isOn);

}  // namespace nOXDIAG100
