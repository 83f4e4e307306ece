#pragma once

// The control side of the user-mode executive that stands for the kernel on the host. Tests use it
// to make calls fail, to see what is left behind and to capture what is printed. Whoever breaks a
// rule of the kernel interface (a wrong IRQL, a double free, a mutex released by another thread)
// stops the program with one sentence on standard error, see ntoshost/violation.h.

#include "ntoshost/debugPrint.h"
#include "ntoshost/devices.h"
#include "ntoshost/faults.h"
#include "ntoshost/files.h"
#include "ntoshost/images.h"
#include "ntoshost/pnp.h"
#include "ntoshost/pool.h"
#include "ntoshost/security.h"
#include "ntoshost/stack.h"
#include "ntoshost/strength.h"
#include "ntoshost/thread.h"
#include "ntoshost/time.h"
#include "ntoshost/userMemory.h"
#include "ntoshost/violation.h"
