#pragma once

#include "ntos/types.h"

// A service whose driver is slotbus.sys, a file of its own for each, and the place in the machine
// for its rack, as the system keeps them.
struct tRackService {
  wchar_t const* name;
  wchar_t const* driver;    // the driver object
  wchar_t const* key;       // in the registry
  wchar_t const* instance;  // the key of the place, below that of all places
};

constexpr tRackService kFirstRack = {
    L"slotbus", L"\\Driver\\slotbus",
    L"\\Registry\\Machine\\System\\CurrentControlSet\\Services\\slotbus",
    L"\\Registry\\Machine\\System\\CurrentControlSet\\Enum\\ROOT\\SLOTBUS\\0000"};

constexpr tRackService kSecondRack = {
    L"slotbus2", L"\\Driver\\slotbus2",
    L"\\Registry\\Machine\\System\\CurrentControlSet\\Services\\slotbus2",
    L"\\Registry\\Machine\\System\\CurrentControlSet\\Enum\\ROOT\\SLOTBUS\\0001"};
