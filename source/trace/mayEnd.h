#pragma once

namespace nOXDIAG100 {

class iTraceDestination;

// Whether a destination of the module may be destroyed at the module's end. False when a thread is
// still within its put after kMostPatience, which the event log then says: the destination is to be
// left as it is, since that thread uses it. PASSIVE_LEVEL.
bool mayEnd(iTraceDestination const& destination);

}  // namespace nOXDIAG100
