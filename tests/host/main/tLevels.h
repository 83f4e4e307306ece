#pragma once

#include "tCommand.h"

// Each test at a raised IRQL, from its fixture's constructor to its destructor, in modules that
// were started at PASSIVE_LEVEL. One line a test on standard output: "held", "failed" or "died",
// its name, and behind a tab what the executive said. Returns how the program ends.
int runAtLevel(tCommand const& command);
