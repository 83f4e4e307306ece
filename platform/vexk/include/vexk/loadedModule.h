#pragma once

// Which module the code at an address belongs to.

#include "compiler/types.h"
#include "vexk/api.h"

// What the bytes of tLoadedModule::identity are.
enum tModuleIdentityKind : u8 {
  kModuleUnidentified = 0,
  kModuleBuildId = 1,      // the build id of an ELF file, as its note has it
  kModulePdbIdentity = 2,  // of a PE image: the 16 bytes of the PDB's GUID as the image has them,
                           // and 4 bytes of its age, the low one first
};

// A module as the loader put it into memory. Plain data: nothing in it refers to the module.
struct tLoadedModule {
  static constexpr u32 kMaxNameLength = 63;  // characters kept, the last ones of a longer name
  static constexpr u32 kMaxIdentitySize = 32;

  // Where it begins; of an ELF file what its own addresses are counted from, which is the same
  // unless it was linked for a fixed place.
  u64 base;
  u64 size;  // bytes from `base` to the end of the module in memory
  // Its file's name without folder. A PE image does not know that name: here is the one that its
  // export directory says, without such a directory that of its PDB without ".pdb".
  char name[kMaxNameLength + 1];
  u8 identity[kMaxIdentitySize];
  u8 identitySize;
  u8 identityKind;  // a tModuleIdentityKind
};
static_assert(sizeof(tLoadedModule) == 120, "crosses module borders");

// Fills `module` with what is known of the module that has `address` in it, and returns 1. Returns
// 0, with all of `module` zero, when no module has it. A module whose headers contradict
// themselves, or are not in memory, is told as far as they can be believed: with base only, or
// without identity.
//
// The module must not be unloaded during the call; an address of one that is gone finds nothing, or
// what was loaded there since. Allocates nothing. PASSIVE_LEVEL or APC_LEVEL.
//
//     tLoadedModule module;
//     if (_vexFindModule(returnAddress - 1, &module) != 0) show(module.name);
VEX_API u32 _vexFindModule(u64 address, tLoadedModule* module);
