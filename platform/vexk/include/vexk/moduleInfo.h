#pragma once

// What a module says about itself, and its registration with the platform.
//
// A module hands its record over while the kernel loads it and takes it back at unload. The
// platform keeps a pointer to it: the record, and all that it points to, stays in place between.
//
// Any thread may make these calls, one at a time, as the kernel loads modules one after the other:
// of two modules that export and register at once, one would get the other's dispatchers. The entry
// runs in the thread that calls. Requests to dispatchers run meanwhile in any number of threads.
//
//     i32 status = 0;
//     libRegisterModuleWithVEX(record, status);  // calls record.entry(kModuleLoad)
//     if (status < 0) return STATUS_DRIVER_UNABLE_TO_LOAD;
//     ...
//     libUnregisterModuleWithVEX(record, status);  // calls record.entry(kModuleUnload)

#include "compiler/types.h"
#include "vexk/api.h"
#include "vexk/tModuleGUID.h"

// Why the platform calls a module's entry.
constexpr u32 kModuleLoad = 0;    // the module is registered
constexpr u32 kModuleUnload = 1;  // the module is being unregistered
constexpr u32 kModuleOpen = 2;    // a program opens the module's device
constexpr u32 kModuleClose = 3;   // a program has closed it

// Returns 0, a warning or a negative status. PASSIVE_LEVEL.
using tModuleEntry = i32(u32 reason);

// Who the module is; constant.
struct tModuleIdentity {
  static constexpr u32 kFormat = 6;

  u32 format;
  char const* name;  // "oxdiagk"
  tModuleGUID guid;
  char const* fileName;     // "oxdiagk.dll"
  char const* buildString;  // one line: version, time and place of the build
};
static_assert(offsetof(tModuleIdentity, name) == 8 && offsetof(tModuleIdentity, guid) == 16);
static_assert(offsetof(tModuleIdentity, fileName) == 32);
static_assert(offsetof(tModuleIdentity, buildString) == 40 && sizeof(tModuleIdentity) == 48);

// A counted text, with the members and the layout of the kernel's UNICODE_STRING.
struct tModuleText {
  u16 Length;         // bytes
  u16 MaximumLength;  // bytes
  wchar_t* Buffer;
};
static_assert(sizeof(tModuleText) == 16 && offsetof(tModuleText, Buffer) == 8);

// How the module is installed, and the states of its wrappers around devices.
struct tModulePackage {
  static constexpr u32 kFormat = 1;
  static constexpr u32 kMaxPathLength = 260;  // characters

  u32 format;
  tModuleIdentity const* identity;
  u64 reserved;              // 0
  tModuleText registryPath;  // in registryPathText
  wchar_t registryPathText[kMaxPathLength];
  u32 wdmWrapperState;
  u32 legacyWrapperState;
  u32 legacyWrapperWords[2];
};
static_assert(offsetof(tModulePackage, identity) == 8 && offsetof(tModulePackage, reserved) == 16);
static_assert(offsetof(tModulePackage, registryPath) == 24);
static_assert(offsetof(tModulePackage, registryPathText) == 40);
static_assert(sizeof(tModulePackage::registryPathText) == 520);
static_assert(offsetof(tModulePackage, wdmWrapperState) == 560);
static_assert(offsetof(tModulePackage, legacyWrapperState) == 564);
static_assert(offsetof(tModulePackage, legacyWrapperWords) == 568);
static_assert(sizeof(tModulePackage) == 576);

struct _tLibModuleInfo {
  tModulePackage* package;
  char const* name;
  tModuleEntry* entry;
  u64 reserved;  // 0
};
static_assert(offsetof(_tLibModuleInfo, name) == 8 && offsetof(_tLibModuleInfo, entry) == 16);
static_assert(offsetof(_tLibModuleInfo, reserved) == 24 && sizeof(_tLibModuleInfo) == 32);

// Registers a module and calls its entry with kModuleLoad. When that succeeds, the dispatchers
// ("vexk/iLib.h") that nobody owns yet become the module's and are open to requests; so a module
// exports its own before it registers. `status`, left alone on success:
//   kStatusBadArgument     a record without package, name or entry, or one that is registered
//   kStatusNotInitialized  the platform layer is not running
//   kStatusOutOfMemory     no memory to remember the module
//   else                   the negative status of the entry
// The module is not registered then. A negative `status` on entry is kept and nothing happens.
// PASSIVE_LEVEL.
VEX_API void libRegisterModuleWithVEX(_tLibModuleInfo& module, i32& status);

// Closes the module's dispatchers, waits until no request runs in them, and calls the module's
// entry with kModuleUnload. The module is unregistered whatever the entry returns. `status`, left
// alone on success and when it is negative on entry:
//   kStatusBadArgument  a record that is not registered; nothing happens
//   else                the negative status of the entry
// PASSIVE_LEVEL, not from within a dispatcher of the module.
VEX_API void libUnregisterModuleWithVEX(_tLibModuleInfo& module, i32& status);
