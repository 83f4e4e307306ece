#pragma once

// The requests that move a child device through its plug-and-play states. All of them succeed, in
// every state; a cancel outside its own query state changes nothing.

#include "package/windows/tChildRequest.h"

namespace nOXDIAG100 {

tChildRow startChild;  // the device has its power then
tChildRow queryStopChild;
tChildRow cancelStopChild;
tChildRow stopChild;
tChildRow queryRemoveChild;
tChildRow cancelRemoveChild;

// A child that its bus still lists is as new again. Any other is deleted, and with it goes whoever
// waits for that.
tChildRow removeChild;

// Lets whoever waits for the child's going know.
tChildRow surpriseRemoveChild;

}  // namespace nOXDIAG100
