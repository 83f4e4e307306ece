#pragma once

// What a child device can do.

#include "package/windows/wdm/tChildRequest.h"

namespace nOXDIAG100 {

// Fills the record of the request: the child may be taken out at any time, and has the power states
// that its bus has; nothing else. The bits above the known ones stay.
//   STATUS_UNSUCCESSFUL            no record, one of another version or too small
//   STATUS_INSUFFICIENT_RESOURCES  no memory to ask the bus
//   STATUS_NO_SUCH_DEVICE          the child's bus is gone
//   else                           what the bus' own capabilities were refused with
// The record is left alone then.
tChildRow tellCapabilities;

}  // namespace nOXDIAG100
