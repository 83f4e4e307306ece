// Our headers agree with kernelAbi.h, on every target.

#include "abiChecks.h"
#include "ntos/debug.h"
#include "ntos/driver.h"
#include "ntos/file.h"
#include "ntos/format.h"
#include "ntos/io.h"
#include "ntos/irql.h"
#include "ntos/pool.h"
#include "ntos/registry.h"
#include "ntos/removeLock.h"
#include "ntos/stack.h"
#include "ntos/string.h"
#include "ntos/sync.h"
#include "ntos/thread.h"
#include "ntos/time.h"

#include "kernelAbi.h"
