#pragma once

// Start and stop of the object framework.
//
// On Windows the kernel calls DllInitialize and DllUnload of qelmk.dll, which forward to here. A
// host program calls these itself, after vexkInitialize and before vexkUnload. Starts are counted.
// Both run at PASSIVE_LEVEL and are not locked against each other.

#include "compiler/types.h"
#include "qelmk/api.h"

// Starts the framework. Returns STATUS_SUCCESS, or STATUS_DRIVER_UNABLE_TO_LOAD (0xC000026C) when
// the platform layer is not running.
QELM_API i32 qelmkInitialize();

// Stops the framework; a stop without start does nothing. Returns STATUS_SUCCESS.
QELM_API i32 qelmkUnload();

// 1 while the framework runs, else 0. Any IRQL.
QELM_API u32 pkgIsQelmkInitialized();
