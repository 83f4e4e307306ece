#pragma once

// NTOS_IMPORT marks a kernel call. Here it is linked in statically, or ntdll.dll has it.

#define NTOS_IMPORT
