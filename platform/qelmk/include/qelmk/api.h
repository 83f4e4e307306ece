#pragma once

// QELM_API marks what the object framework gives to other modules. The build defines QELMK_BUILD
// for the framework's own sources only.

#include "vexk/linkage.h"

#ifdef QELMK_BUILD
#define QELM_API VEX_EXPORT
#else
#define QELM_API VEX_IMPORT
#endif
