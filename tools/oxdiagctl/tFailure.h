#pragma once

#include <string>

#include "oxdiagctl/exitCodes.h"

// Why the program ends; thrown.
struct tFailure {
  tExitCode code;
  std::string sentence;  // without its full stop
};
