#pragma once

#include "ntos/types.h"

namespace nOXDIAG100 {

class iTraceDestination;
class tTraceParts;

// What happens to the destination of a stream, each under the streams' lock and with the waits that
// it needs. PASSIVE_LEVEL.

// As tTrace::setDestination. With `isChanged`, the settings of `next` have changed, so that it is
// opened anew though other streams use it.
iTraceDestination* switchTo(tTraceParts& stream, iTraceDestination& next, bool isChanged);

// Configures a destination while no thread is within it. False when that was given up.
bool configureDestination(iTraceDestination& chosen, int argc, char** argv);

// Waits for the threads that are handing a text of the stream over; false when that was given up.
bool awaitTexts(tTraceParts& stream);

// At the end of the stream: waits for its texts, and closes what it was switched to, if `mayClose`.
void leaveDestination(tTraceParts& stream, bool mayClose);

}  // namespace nOXDIAG100
