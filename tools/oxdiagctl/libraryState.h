#pragma once

#include <optional>

#include "oxdiagctl/iRequestChannel.h"
#include "oxdiagk/stateRequest.h"

// What the library on the other side says of itself; nothing when it is one that is not asked for
// that, an older one. Throws tFailure when the channel does.
std::optional<nOXDIAG100::tStateAnswer> askLibraryState(iRequestChannel& channel);
