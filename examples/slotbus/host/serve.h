#pragma once

#include <optional>
#include <string>

#include "slotbus/host/tEndWatch.h"
#include "slotbus/host/tRackMachine.h"
#include "slotbus/host/tSerialPort.h"

// What the program that serves has made before.
struct tServing {
  tEndWatch& watch;
  tSerialPort const& serialPort;
};

// Lets other processes reach the library at a socket (nothing: the one by default) and explains on
// standard error how, until the end is asked for. Meanwhile the devices of the rack are asked for
// their lines, one every two seconds, and a trace file that takes nothing more is reported on
// standard error. Returns a sentence for the user when it cannot be done.
std::optional<std::string> serve(tRackMachine& machine, tServing& serving,
                                 std::optional<std::string> const& socket);
