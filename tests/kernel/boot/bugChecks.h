#pragma once

#include "ntos/types.h"

// Wine has the names of the calls for those who have something for a crash dump, and stops whoever
// calls them. The boot driver answers instead: it keeps count, and nothing crashes here.

// Has the modules of the family call this driver's. False when one of the places is not found.
bool answerBugCheckCalls();

// How many are registered at this moment.
u32 countBugCheckCallbacks();
