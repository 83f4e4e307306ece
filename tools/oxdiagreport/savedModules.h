#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "compiler/types.h"

// A module that was saved with a status, as "oxdiagk/tStatus2ModuleList.h" says.
struct tSavedModule {
  u64 base;
  u64 size;
  u8 identityKind;       // a tModuleIdentityKind
  std::string identity;  // bytes
  std::string name;      // bytes
};

// What the characters between the flag of a status and its detail tell of modules. They may be
// anything: a list that is cut, or contradicts itself, is none, and so are characters that are no
// list. What a newer writer put behind the list, or behind the fields of a module, is passed over.
std::vector<tSavedModule> modulesIn(std::string_view characters);

// The modules of the status in the stream that begins there, a status that could be read.
std::vector<tSavedModule> modulesOfStatus(std::string_view stream);

// The module that has the address in it; null when none has.
tSavedModule const* findModule(std::vector<tSavedModule> const& modules, u64 address);
