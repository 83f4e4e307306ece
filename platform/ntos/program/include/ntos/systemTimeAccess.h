#pragma once

#include "ntos/types.h"

extern "C" {
NTOS_IMPORT void KeQuerySystemTime(LARGE_INTEGER* time);
}
