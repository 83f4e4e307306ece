#pragma once

#include "ntos/driver.h"

namespace ntoshost {

// Which driver serves devices of an id. The tables have a lock of their own.

// The driver of the first of the ids, one behind the other, that one was assigned to; null when
// there is none.
DRIVER_OBJECT* findAssigned(wchar_t const* ids);

// Whether it was assigned the null driver.
bool isNullDriverAssigned(wchar_t const* ids);

void forgetAssignments(DRIVER_OBJECT* driver);

}  // namespace ntoshost
