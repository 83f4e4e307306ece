#pragma once

// What a child device answers about itself, in memory that is the asker's to give back. When there
// is none the status is STATUS_INSUFFICIENT_RESOURCES, but for texts, where it stays what it was.

#include "package/windows/wdm/tChildRequest.h"

namespace nOXDIAG100 {

// Of the target device only: the child itself. Other kinds keep their status.
tChildRow tellRelations;

// Success without a list.
tChildRow tellNoRequirements;

// Its description, or where it sits. A text that the request brings along is left alone.
tChildRow tellText;

// Its device id, its hardware ids, its instance. There are no compatible ids.
tChildRow tellId;

// Kind and number of its bus.
tChildRow tellBusInformation;

}  // namespace nOXDIAG100
