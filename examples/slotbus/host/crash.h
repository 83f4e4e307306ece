#pragma once

#include <functional>
#include <optional>
#include <string>

#include "oxdiagk/tTrace.h"
#include "slotbus/host/tRackMachine.h"

// Stops the machine, as a fault of a driver does, in the middle of a line of trace. Before that
// some devices tell their lines.
[[noreturn]] void crashInLine(tRackMachine& machine, nOXDIAG100::tTrace& trace);

// Runs `machine`, which is to crash, in a process of its own, whose crash dump is to be in the file
// `dump`; without a name in a new one for temporary files. Says on standard error where the dump is
// and how it is looked at. Returns the exit code of the program: that of `machine` if it came back.
int runUntilCrash(std::function<int()> const& machine, std::optional<std::string> const& dump);
