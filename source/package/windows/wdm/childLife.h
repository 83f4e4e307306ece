#pragma once

// The requests that move a child device through its plug-and-play states. All of them succeed, in
// every state; a cancel outside its own query state changes nothing.

#include "package/windows/wdm/tChildRequest.h"

namespace nOXDIAG100 {

tChildRow startChild;  // the device has its power then
tChildRow queryStopChild;
tChildRow cancelStopChild;
tChildRow stopChild;
tChildRow queryRemoveChild;
tChildRow cancelRemoveChild;

// A child that its bus still lists is as new again. Any other comes to its end.
tChildRow removeChild;

// The end of the handler, when somebody waits for that.
tChildRow surpriseRemoveChild;

}  // namespace nOXDIAG100
