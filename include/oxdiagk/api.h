#pragma once

// OXDIAG_API marks what oxdiagk gives to other modules. The build defines OXDIAGK_BUILD for the
// library's own sources only. OXDIAG_API_TEMPLATE marks the declaration of a template's instance
// that the library has; its definition there is marked OXDIAG_API.

#include "vexk/linkage.h"

#ifdef OXDIAGK_BUILD
#define OXDIAG_API VEX_EXPORT
#define OXDIAG_API_TEMPLATE
#else
#define OXDIAG_API VEX_IMPORT
#define OXDIAG_API_TEMPLATE VEX_IMPORT
#endif
