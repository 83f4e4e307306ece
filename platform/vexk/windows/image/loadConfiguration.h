#pragma once

// What an image says about its guards, in the layout that loaders read.

#include <stddef.h>

#include "ntos/types.h"

struct tLoadConfiguration {
  u32 size;
  u32 timeStamp;
  u16 majorVersion;
  u16 minorVersion;
  u32 globalFlags[2];
  u32 criticalSectionTimeout;
  u64 memoryLimits[5];
  u64 processAffinity;
  u32 processHeapFlags;
  u16 servicePack;
  u16 dependentLoadFlags;
  u64 editList;
  u64* securityCookie;
  u64 exceptionHandlers[2];
  void const* guardCheck;     // the place of a pointer to the function that checks a target
  void const* guardDispatch;  // the same, of the one that checks it and calls it
  void const* guardFunctions;
  void const* guardFunctionCount;
  void const* guardFlags;  // 32 bits; the code integrity that follows begins with zeros
  u64 codeIntegrity;
  void const* guardImports;
  void const* guardImportCount;
  void const* guardJumps;
  void const* guardJumpCount;
};
static_assert(offsetof(tLoadConfiguration, securityCookie) == 0x58);
static_assert(offsetof(tLoadConfiguration, guardCheck) == 0x70);
static_assert(offsetof(tLoadConfiguration, guardFlags) == 0x90);
static_assert(offsetof(tLoadConfiguration, guardImports) == 0xA0);
static_assert(sizeof(tLoadConfiguration) == 0xC0);
