#pragma once

#include "tCommand.h"

// The tests with calls that fail. Whatever a test itself finds then, afterwards nothing is left, no
// lock is owned, the IRQL is as before and the modules unload. The first line on standard output
// counts; then come the findings, each with the words that repeat it. Returns how the program ends.
int failEachCall(tCommand const& command);
int failRandomly(tCommand const& command);
