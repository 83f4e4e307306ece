#pragma once

// NTOS_IMPORT marks a kernel call. Here the code is in ntoskrnl.exe or hal.dll.

#define NTOS_IMPORT __declspec(dllimport)
