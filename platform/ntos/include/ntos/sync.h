#pragma once

// Everything to wait for and to lock with.

#include "ntos/event.h"
#include "ntos/fastMutex.h"
#include "ntos/mutex.h"
#include "ntos/status.h"
#include "ntos/wait.h"
