#pragma once

// The whole platform layer.

#include "vexk/callStack.h"
#include "vexk/cpu.h"
#include "vexk/debug.h"
#include "vexk/iBus.h"
#include "vexk/iLib.h"
#include "vexk/memory.h"
#include "vexk/module.h"
#include "vexk/number.h"
#include "vexk/statusCodes.h"
#include "vexk/sync.h"
#include "vexk/tFastMutexGuard.h"
#include "vexk/tMemBlockReferenceBase.h"
#include "vexk/tMemBlockReferenceTemplate.h"
#include "vexk/tSSTimeAbsolute.h"
#include "vexk/tSSVersion.h"
#include "vexk/threadUtility.h"
#include "vexk/timerTimebase.h"
#include "vexk/userMemory.h"
