#pragma once

// NTOS_IMPORT marks a kernel call. Here the user-mode executive is linked in statically.

#define NTOS_IMPORT
