#pragma once

#include <string>

#include "ntos/types.h"

// A life of the three modules, and what is left of it.
class tModules {
 public:
  bool start();

  // Unloads them. What was wrong at the end, one line each: the IRQL, locks that are owned,
  // statuses, blocks, handles, devices, requests and links that are left. Empty: nothing.
  std::string stop();

 private:
  u64 blocks = 0;
  u64 handles = 0;
};
