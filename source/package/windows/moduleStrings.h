#pragma once

// What the module says about itself: its names and one line about its build, for the identity
// block and for every event of its life. Constant data; any IRQL, before every initialisation.

#include "vexk/moduleInfo.h"

namespace nOXDIAG100 {

// "oxdiagk", and "oxdiagk.dll" on every target.
extern char const kModuleName[];
extern char const kModuleFileName[];

// Version, date and time of the sources in UTC, and the build path: module, target system,
// processor, compiler, flavour.
//
//     2.0.0f1 2027-01-31 18:05:09 oxdiagk/windows/x86_64/clang++/release
//
// The time is not that of the compilation, so that the same sources make the same file; where it
// comes from is said in cmake/buildTime.cmake.
extern char const kBuildString[];

// All of it, with the module's identifier, as the platform reads it.
extern tModuleIdentity const kModuleIdentity;

}  // namespace nOXDIAG100
