#pragma once

// OXDIAG_API marks what oxdiagk gives to other modules. The build defines OXDIAGK_BUILD for the
// library's own sources only.

#include "vexk/linkage.h"

#ifdef OXDIAGK_BUILD
#define OXDIAG_API VEX_EXPORT
#else
#define OXDIAG_API VEX_IMPORT
#endif
