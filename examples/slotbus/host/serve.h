#pragma once

#include <optional>
#include <string>

#include "slotbus/host/tRackMachine.h"

// Keeps SIGINT and SIGTERM for serve(): from now on they wait until it takes them, in this thread
// and all that are started later.
void holdEndSignals();

// Lets other processes reach the library at a socket (nothing: the one by default) and tells on
// standard error how, until SIGINT or SIGTERM comes. Meanwhile the devices of the rack are asked
// for their lines, one every two seconds. Returns a sentence for the user when it cannot be done.
std::optional<std::string> serve(tRackMachine& machine, std::optional<std::string> const& socket);
