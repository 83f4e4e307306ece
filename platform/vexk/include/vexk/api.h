#pragma once

// VEX_API marks what the platform layer gives to other modules. The build defines VEXK_BUILD for
// the layer's own sources only.

#include "vexk/linkage.h"

#ifdef VEXK_BUILD
#define VEX_API VEX_EXPORT
#else
#define VEX_API VEX_IMPORT
#endif
